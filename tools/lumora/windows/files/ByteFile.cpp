#include "lumora/files/ByteFile.h"

#include "lumora/files/FileSystem.h"
#include "lumora/windows/Results.h"
#include "lumora/windows/files/FileHandle.h"

#include <algorithm>
#include <utility>

namespace Lumora {

namespace {

/// One call takes no more.
constexpr size_t mostBytes = size_t{1} << 30;

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

[[noreturn]] void ThrowLastError()
{
    throw Failure{DescribeError(GetLastError())};
}

ByteFile Opened(const std::wstring& path, DWORD access, DWORD sharing, DWORD disposition, DWORD flags)
{
    const HANDLE handle = CreateFileW(path.c_str(), access, sharing, nullptr, disposition, flags, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        ThrowLastError();
    return OwningFile(handle);
}

/// A copy, so that both can be closed.
ByteFile Standard(DWORD which)
{
    HANDLE copy = nullptr;
    const HANDLE process = GetCurrentProcess();
    if (!DuplicateHandle(process, GetStdHandle(which), process, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS))
        ThrowLastError();
    return OwningFile(copy);
}

} // namespace

ByteFile OwningFile(HANDLE handle)
{
    auto owned = std::make_unique<ByteFile::Handle>();
    owned->value.reset(handle);
    return ByteFile(std::move(owned));
}

ByteFile::ByteFile() noexcept = default;
ByteFile::ByteFile(std::unique_ptr<Handle> opened) noexcept : handle(std::move(opened)) {}
ByteFile::ByteFile(ByteFile&& other) noexcept = default;
ByteFile& ByteFile::operator=(ByteFile&& other) noexcept = default;
ByteFile::~ByteFile() = default;

ByteFile ByteFile::Open(const std::wstring& path)
{
    return Opened(path, GENERIC_READ, shareAll, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN);
}

ByteFile ByteFile::Create(const std::wstring& path)
{
    return Opened(path, GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
}

ByteFile ByteFile::MakeTemporary(const std::wstring& neighbour)
{
    const std::wstring name = neighbour + L'.' + std::to_wstring(GetCurrentProcessId()) + rowsFileEnd;
    return Opened(name, GENERIC_READ | GENERIC_WRITE, 0, CREATE_NEW,
                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE);
}

ByteFile ByteFile::StandardInput()
{
    return Standard(STD_INPUT_HANDLE);
}

ByteFile ByteFile::StandardOutput()
{
    return Standard(STD_OUTPUT_HANDLE);
}

size_t ByteFile::Read(std::span<uint8_t> target)
{
    DWORD count = 0;
    const auto wanted = static_cast<DWORD>(std::min(target.size(), mostBytes));
    // A pipe is broken when the program at its other end has ended.
    if (!ReadFile(handle->value.get(), target.data(), wanted, &count, nullptr) &&
        GetLastError() != ERROR_BROKEN_PIPE)
        ThrowLastError();
    return count;
}

void ByteFile::Write(std::span<const uint8_t> bytes)
{
    while (!bytes.empty())
    {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), mostBytes));
        if (!WriteFile(handle->value.get(), bytes.data(), wanted, &count, nullptr))
            ThrowLastError();
        bytes = bytes.subspan(count);
    }
}

void ByteFile::Seek(uint64_t position)
{
    LARGE_INTEGER target = {};
    target.QuadPart = static_cast<LONGLONG>(position);
    if (!SetFilePointerEx(handle->value.get(), target, nullptr, FILE_BEGIN))
        ThrowLastError();
}

void ByteFile::Close()
{
    handle.reset();
}

} // namespace Lumora
