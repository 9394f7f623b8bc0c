#pragma once

#include <cstdint>
#include <string>

namespace Lumora {

/// Keeps other programs of this kind from writing a file: on Windows, a file that is open for writing is
/// nobody else's anyway, elsewhere the lock makes the file, if it is not there, and holds it. The lock ends
/// with the object, or with the program.
class FileLock
{
public:
    /// Throws a Failure if another program has it, or if something else than a file has the name.
    explicit FileLock(const std::wstring& path);
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    // NOLINTNEXTLINE(performance-trivially-destructible): only on Windows is there nothing to do.
    ~FileLock();

private:
    /// What the system knows it by.
    [[maybe_unused]] std::intptr_t handle;
};

} // namespace Lumora
