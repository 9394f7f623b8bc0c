#include "lumora/files/FileLock.h"

#include "lumora/files/NameText.h"
#include "lumora/linux/Errors.h"
#include "lumora/linux/files/FileHandle.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace Lumora {

namespace {

/// Whether the file still has the name: it may have been removed, or renamed, before it was locked.
bool HasName(const Descriptor& file, const std::string& name)
{
    struct stat locked = {};
    struct stat named = {};
    return fstat(file.Value(), &locked) == 0 && lstat(name.c_str(), &named) == 0 &&
           locked.st_dev == named.st_dev && locked.st_ino == named.st_ino;
}

Descriptor Locked(const std::string& name)
{
    // Neither a link is followed, nor a pipe waited for.
    constexpr int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    constexpr mode_t usualMode = 0666;
    while (true)
    {
        Descriptor file(open(name.c_str(), flags, usualMode));
        if (file.Value() < 0)
            ThrowLastError();
        struct stat facts = {};
        if (fstat(file.Value(), &facts) != 0)
            ThrowLastError();
        if (!S_ISREG(facts.st_mode))
            throw Failure{L"something else has the name " + TextOfName(name)};
        // Where the file system knows no locks, there are none.
        if (flock(file.Value(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
            ThrowLastError();
        if (HasName(file, name))
            return file;
    }
}

} // namespace

FileLock::FileLock(const std::wstring& path) : handle(Locked(BytesOfName(path)).Release()) {}

FileLock::~FileLock()
{
    close(static_cast<int>(handle));
}

} // namespace Lumora
