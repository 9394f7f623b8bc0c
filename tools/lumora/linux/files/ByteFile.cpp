#include "lumora/files/ByteFile.h"

#include "lumora/linux/Errors.h"
#include "lumora/linux/files/FileHandle.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace Lumora {

namespace {

Descriptor Checked(int descriptor)
{
    if (descriptor < 0)
        ThrowLastError();
    return Descriptor(descriptor);
}

} // namespace

ByteFile OwningFile(Descriptor descriptor)
{
    auto owned = std::make_unique<ByteFile::Handle>();
    owned->value = std::move(descriptor);
    return ByteFile(std::move(owned));
}

ByteFile::ByteFile() noexcept = default;
ByteFile::ByteFile(std::unique_ptr<Handle> opened) noexcept : handle(std::move(opened)) {}
ByteFile::ByteFile(ByteFile&& other) noexcept = default;
ByteFile& ByteFile::operator=(ByteFile&& other) noexcept = default;
ByteFile::~ByteFile() = default;

ByteFile ByteFile::Open(const std::wstring& path)
{
    return OwningFile(Checked(open(BytesOfName(path).c_str(), O_RDONLY | O_CLOEXEC)));
}

ByteFile ByteFile::Create(const std::wstring& path)
{
    constexpr mode_t usualMode = 0666; // what the user's mask leaves of this
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC;
    return OwningFile(Checked(open(BytesOfName(path).c_str(), flags, usualMode)));
}

ByteFile ByteFile::MakeTemporary(const std::wstring& neighbour)
{
    std::string name = BytesOfName(neighbour) + ".XXXXXX";
    Descriptor file = Checked(mkostemp(name.data(), O_CLOEXEC));
    unlink(name.c_str());
    return OwningFile(std::move(file));
}

ByteFile ByteFile::StandardInput()
{
    return OwningFile(Checked(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)));
}

ByteFile ByteFile::StandardOutput()
{
    return OwningFile(Checked(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)));
}

size_t ByteFile::Read(std::span<uint8_t> target)
{
    const ssize_t count = read(handle->value.Value(), target.data(), target.size());
    if (count < 0)
        ThrowLastError();
    return static_cast<size_t>(count);
}

void ByteFile::Write(std::span<const uint8_t> bytes)
{
    while (!bytes.empty())
    {
        const ssize_t count = write(handle->value.Value(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            ThrowLastError();
        bytes = bytes.subspan(static_cast<size_t>(count));
    }
}

void ByteFile::Seek(uint64_t position)
{
    if (lseek(handle->value.Value(), static_cast<off_t>(position), SEEK_SET) < 0)
        ThrowLastError();
}

void ByteFile::Close()
{
    if (!handle)
        return;
    const int result = close(handle->value.Release());
    handle.reset();
    if (result != 0)
        ThrowLastError();
}

} // namespace Lumora
