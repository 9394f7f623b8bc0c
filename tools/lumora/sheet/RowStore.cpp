#include "lumora/sheet/RowStore.h"

#include "lumora/console/Failure.h"

#include <algorithm>

namespace Lumora {

RowStore::RowStore(const std::wstring& neighbour)
{
    const std::wstring name = neighbour + L'.' + std::to_wstring(GetCurrentProcessId()) + L".lumora-rows";
    const HANDLE opened = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        throw Failure{L"cannot make a temporary file: " + DescribeError(GetLastError())};
    file.reset(opened);
}

void RowStore::Append(std::span<const uint8_t> rows)
{
    DWORD written = 0;
    if (!WriteFile(file.get(), rows.data(), static_cast<DWORD>(rows.size()), &written, nullptr) ||
        written != rows.size())
        throw Failure{L"cannot write a temporary file: " + DescribeError(GetLastError())};
}

void RowStore::Rewind()
{
    if (!SetFilePointerEx(file.get(), {}, nullptr, FILE_BEGIN))
        throw Failure{L"cannot read a temporary file: " + DescribeError(GetLastError())};
}

void RowStore::Read(std::span<uint8_t> rows)
{
    DWORD count = 0;
    if (!ReadFile(file.get(), rows.data(), static_cast<DWORD>(rows.size()), &count, nullptr) ||
        count != rows.size())
        throw Failure{L"cannot read a temporary file: " + DescribeError(GetLastError())};
}

} // namespace Lumora
