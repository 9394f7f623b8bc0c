#include "lumora/sheet/RowStore.h"

#include "lumora/console/Failure.h"

namespace Lumora {

namespace {

constexpr const wchar_t* cannotWrite = L"cannot write a temporary file";
constexpr const wchar_t* cannotRead = L"cannot read a temporary file";

} // namespace

RowStore::RowStore(const std::wstring& neighbour)
{
    WithName(L"cannot make a temporary file", [&] { file = ByteFile::MakeTemporary(neighbour); });
}

void RowStore::Append(std::span<const uint8_t> rows)
{
    WithName(cannotWrite, [&] { file.Write(rows); });
}

void RowStore::Rewind()
{
    WithName(cannotRead, [this] { file.Seek(0); });
}

void RowStore::Read(std::span<uint8_t> rows)
{
    WithName(cannotRead, [&] {
        if (!ReadWhole(file, rows))
            throw Failure{L"it is shorter than before"};
    });
}

} // namespace Lumora
