#pragma once

#include "lumora/console/Console.h"

#include <string>
#include <string_view>
#include <vector>

namespace Lumora {

/// One file to work on.
struct SourceFile
{
    /// As the user knows it.
    std::wstring name;
    /// Full, for opening it.
    std::wstring path;
    /// Where it was found below the folder that the user named; empty for a file directly in it, or named
    /// itself.
    std::wstring subfolder;
};

/// The files to work on, and how many of the given paths have failed.
struct FileList
{
    std::vector<SourceFile> files;
    size_t failures = 0;
};

/// Which files below a folder count.
enum class FolderRule
{
    /// Those with an extension that Lumora registers.
    RegisteredExtension,
    /// Those, and all other files that Lumora can read. Lumora must be registered.
    ReadableToo,
};

/// Finds what the paths name: files, patterns with * and ? in their last part, and folders with all that is
/// below them. Complains about a path that names nothing.
[[nodiscard]] FileList FindFiles(const std::vector<std::wstring>& paths, FolderRule rule, Console& console);

} // namespace Lumora
