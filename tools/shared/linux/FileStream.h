#pragma once

#include "platform/Platform.h"

#include <cstdint>
#include <string>

namespace Lumora {

/// A file that the readers read. It belongs to the function that made it, so nobody counts references.
class FileStream final : public IStream
{
public:
    /// Opens the file. Throws std::system_error; also for what is no regular file, because reading a pipe or
    /// a device could wait for ever.
    explicit FileStream(const std::string& path);
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;
    ~FileStream();

    /// In bytes.
    [[nodiscard]] uint64_t Size() const noexcept { return size; }
    /// When the file was last changed, in seconds since 1970.
    [[nodiscard]] int64_t ChangeTime() const noexcept { return changeTime; }

    HRESULT QueryInterface(REFIID riid, void** object) override;
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT Read(void* buffer, ULONG count, ULONG* countRead) override;
    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition) override;
    HRESULT Stat(STATSTG* statistics, DWORD flags) override;

private:
    int file;
    uint64_t size = 0;
    int64_t changeTime = 0;
    uint64_t position = 0;
};

} // namespace Lumora
