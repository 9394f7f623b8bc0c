#pragma once

#include <cstdint>
#include <string>

namespace Lumora {

/// Keeps other programs of this kind from writing a file, until the object or the program ends. On Windows
/// nobody else can write a file that is open for writing, so there is nothing to do. Elsewhere the lock holds
/// the file, and creates it if it is not there.
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
