#pragma once

#include "lumora/files/FileLock.h"

#include <optional>
#include <string>
#include <string_view>

namespace Lumora {

/// A file that has a temporary name while it is being written. It is deleted unless it is kept. One that a
/// killed program has left behind is written anew.
class UnfinishedFile
{
public:
    /// Makes the folder of the file. Throws a Failure, also for a place that is not free, and while another
    /// program writes the file.
    UnfinishedFile(const std::wstring& finalPath, std::string_view signature);
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile();

    /// Throws a Failure if there is a folder of that name, or a file that does not begin like those that are
    /// written here: it is somebody else's, and perhaps a source.
    static void RequireFreePlace(const std::wstring& finalPath, std::string_view signature);

    /// Whether a program was killed while it wrote this file.
    [[nodiscard]] static bool WasLeftBehind(const std::wstring& finalPath) noexcept;

    /// Gives the file its final name and replaces a file of that name. Throws a Failure.
    void Keep();

    const std::wstring path;

private:
    const std::wstring target;
    std::optional<FileLock> lock;
    bool isKept = false;
};

} // namespace Lumora
