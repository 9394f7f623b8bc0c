#include "shared/linux/FileStream.h"

#include <cerrno>
#include <limits>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumora {

FileStream::FileStream(const std::string& path)
    // Without this flag, a pipe would be waited for.
    : file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
    struct stat facts = {};
    if (file < 0 || fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode))
    {
        const int error = file < 0 ? errno : S_ISDIR(facts.st_mode) ? EISDIR : EINVAL;
        if (file >= 0)
            close(file);
        throw std::system_error(error, std::generic_category());
    }
    size = static_cast<uint64_t>(facts.st_size);
    changeTime = facts.st_mtim.tv_sec;
}

FileStream::~FileStream()
{
    close(file);
}

HRESULT FileStream::QueryInterface(REFIID riid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (riid != IID_IUnknown && riid != IID_IStream)
        return E_NOINTERFACE;
    *object = this;
    return S_OK;
}

HRESULT FileStream::Read(void* buffer, ULONG count, ULONG* countRead)
{
    if (countRead)
        *countRead = 0;
    ULONG done = 0;
    while (done < count)
    {
        const ssize_t more =
            pread(file, static_cast<char*>(buffer) + done, count - done, static_cast<off_t>(position + done));
        if (more < 0 && errno == EINTR)
            continue;
        if (more < 0)
            return STG_E_READFAULT;
        if (more == 0)
            break;
        done += static_cast<ULONG>(more);
    }
    position += done;
    if (countRead)
        *countRead = done;
    return done == count ? S_OK : S_FALSE;
}

HRESULT FileStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition)
{
    int64_t from = 0;
    if (origin == STREAM_SEEK_CUR)
        from = static_cast<int64_t>(position);
    else if (origin == STREAM_SEEK_END)
        from = static_cast<int64_t>(size);
    else if (origin != STREAM_SEEK_SET)
        return STG_E_INVALIDFUNCTION;
    int64_t target = 0;
    if (__builtin_add_overflow(from, move.QuadPart, &target) || target < 0)
        return STG_E_INVALIDFUNCTION;
    position = static_cast<uint64_t>(target);
    if (newPosition)
        newPosition->QuadPart = position;
    return S_OK;
}

HRESULT FileStream::Stat(STATSTG* statistics, DWORD)
{
    if (!statistics)
        return E_POINTER;
    *statistics = {.pwcsName = nullptr, .type = STGTY_STREAM, .cbSize = {size}};
    return S_OK;
}

} // namespace Lumora
