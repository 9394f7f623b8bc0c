#pragma once

#include "lumora/files/FileSystem.h"
#include "lumora/files/NameList.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Lumora {

/// One file to work on.
struct SourceFile
{
    /// As the user knows it.
    std::wstring name;
    /// Full, for opening it.
    std::wstring path;
    /// Where it was found below the folder that the user named; for a relative name from a list, below the
    /// current folder. Empty for a file directly in that folder.
    std::wstring subfolder;
    /// Why the name stands for no file.
    std::optional<std::wstring> failure;
};

/// Whether Lumora can read the file with this path.
using ReadableTest = std::function<bool(const std::wstring& path)>;

/// Finds what paths name: files, patterns with * and ? in their last part, and folders with all that is below
/// them. It looks into a folder only when the files before are taken.
class FileSource
{
public:
    /// Takes the paths, and then the names of the list, if there is one. Of the files below a folder, those
    /// count that have an extension that Lumora registers, and those that pass the test, if there is one.
    FileSource(std::vector<std::wstring> paths, std::unique_ptr<NameList> names, ReadableTest isReadable);

    /// The next file, or the next name that stands for none. Nothing at the end, and after an interruption.
    /// Throws a Failure when the list cannot be read.
    [[nodiscard]] std::optional<SourceFile> Next();

private:
    /// A pattern or a folder that the user named.
    struct Root
    {
        std::wstring name;
        /// The folder to look into, or to begin with.
        std::wstring folder;
        /// Where its files belong.
        std::wstring subfolder;
        bool isPattern = false;
        bool isEmpty = true;
    };

    [[nodiscard]] std::optional<SourceFile> Begin(const std::wstring& path, bool isFromList);
    [[nodiscard]] std::optional<SourceFile> LookInto(const std::wstring& subfolder,
                                                     const std::wstring& pattern);
    [[nodiscard]] std::optional<SourceFile> Take(const FolderEntry& entry);
    [[nodiscard]] bool Counts(const FolderEntry& file) const;
    [[nodiscard]] std::wstring Here() const;

    std::vector<std::wstring> paths;
    size_t nextPath = 0;
    std::unique_ptr<NameList> names;
    ReadableTest isReadable;

    std::optional<Root> root;
    /// Folders below the root that are still to be looked into, the last one first.
    std::vector<std::wstring> pending;
    /// The folder below the root that is being looked into, and what is in it.
    std::wstring subfolder;
    std::vector<FolderEntry> entries;
    size_t nextEntry = 0;
};

/// All files of a source, and the names that stand for none.
struct FileList
{
    std::vector<SourceFile> files;
    std::vector<SourceFile> failures;
};
[[nodiscard]] FileList AllFilesOf(FileSource source);

} // namespace Lumora
