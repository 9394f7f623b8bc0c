#include "lumora/pictures/UnfinishedText.h"

#include "lumora/console/Failure.h"

#include <cstddef>
#include <cstdint>

namespace Lumora {

namespace {

constexpr const wchar_t* cannotWrite = L"cannot write the file";

} // namespace

UnfinishedText::UnfinishedText(const std::wstring& path, std::string_view signature) : file(path, signature)
{
    WithName(cannotWrite, [this] { stream = ByteFile::Create(file.path); });
}

void UnfinishedText::Write(std::string_view text)
{
    constexpr size_t muchText = 65'536;
    pending += text;
    if (pending.size() >= muchText)
        WriteOut();
}

void UnfinishedText::Keep()
{
    WriteOut();
    WithName(cannotWrite, [this] { stream.Close(); });
    file.Keep();
}

void UnfinishedText::WriteOut()
{
    const auto* const bytes = reinterpret_cast<const uint8_t*>(pending.data());
    WithName(cannotWrite, [this, bytes] { stream.Write({bytes, pending.size()}); });
    pending.clear();
}

} // namespace Lumora
