#include "lumora/files/FileSource.h"

#include "lumora/console/Failure.h"
#include "lumora/console/Interruption.h"
#include "lumora/files/FileSystem.h"
#include "lumora/files/ListOrder.h"
#include "lumora/files/Paths.h"
#include "registration/Formats.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Lumora {

namespace {

/// The entries of a folder that match the pattern, sorted by name. Throws a Failure.
std::vector<FolderEntry> SortedEntries(const std::wstring& folder, const std::wstring& pattern)
{
    std::vector<FolderEntry> entries = ListFolder(folder, pattern);
    std::ranges::sort(entries, ListOrder{}, &FolderEntry::name);
    return entries;
}

/// A relative path in its shortest form. Empty for a path from a root, and for one that leads upwards.
std::wstring PathBelow(std::wstring_view path)
{
    if (IsFromRoot(path))
        return {};
    std::wstring below;
    while (!path.empty())
    {
        const std::wstring_view part = path.substr(0, path.find_first_of(pathSeparators));
        path.remove_prefix(std::min(part.size() + 1, path.size()));
        if (part == L"..")
            return {};
        if (!part.empty() && part != L".")
            below = JoinPath(below, part);
    }
    return below;
}

SourceFile NoFile(const std::wstring& name, std::wstring failure)
{
    return {name, {}, {}, std::move(failure)};
}

} // namespace

FileSource::FileSource(std::vector<std::wstring> namedPaths, std::unique_ptr<NameList> nameList,
                       ReadableTest readableTest)
    : paths(std::move(namedPaths)), names(std::move(nameList)), isReadable(std::move(readableTest))
{}

std::optional<SourceFile> FileSource::Next()
{
    while (!Interruption::IsWanted())
    {
        std::optional<SourceFile> found;
        if (nextEntry < entries.size())
        {
            found = Take(entries[nextEntry++]);
        }
        else if (!pending.empty())
        {
            const std::wstring next = std::move(pending.back());
            pending.pop_back();
            found = LookInto(next, L"*");
        }
        else if (root)
        {
            if (root->isEmpty)
                found = NoFile(root->name, root->isPattern ? L"no file has such a name"
                                                           : L"there is no file for Lumora in this folder");
            root.reset();
        }
        else if (nextPath < paths.size())
        {
            found = Begin(paths[nextPath++], false);
        }
        else
        {
            const std::optional<std::wstring> name = names ? names->Next() : std::nullopt;
            if (!name)
                return std::nullopt;
            found = Begin(*name, true);
        }
        if (found)
        {
            if (root)
                root->isEmpty = false;
            return found;
        }
    }
    return std::nullopt;
}

/// A path that names one file or none is done at once. Others become the root.
std::optional<SourceFile> FileSource::Begin(const std::wstring& path, bool isFromList)
{
    const bool isPattern = !isFromList && FileName(path).find_first_of(L"*?") != std::wstring::npos;
    // Some systems let a name have these characters.
    if (isPattern && !FoundAt(OpenablePath(path)))
    {
        root = {.name = path, .folder = std::wstring(ParentFolder(path)), .subfolder = {}, .isPattern = true};
        return LookInto({}, std::wstring(FileName(path)));
    }
    if (const size_t nul = path.find(L'\0'); nul != std::wstring::npos)
        return NoFile(path.substr(0, nul), L"the name holds a NUL character; -0 is for lists with these");
    const std::wstring openable = OpenablePath(path);
    PathKind kind = PathKind::File;
    if (const auto failure = FailureOf([&] { kind = KindOf(openable); }))
        return NoFile(path, *failure);
    if (kind == PathKind::Other)
        return NoFile(path, L"this is neither a file nor a folder");
    const bool isFolder = kind == PathKind::Folder;
    std::wstring place;
    if (isFromList)
        place = PathBelow(isFolder ? path : ParentFolder(path));
    if (!isFolder)
        return SourceFile{path, openable, std::move(place), {}};
    root = {.name = path, .folder = path, .subfolder = std::move(place)};
    pending.emplace_back();
    return std::nullopt;
}

/// If a folder cannot be listed, the search goes on with the others.
std::optional<SourceFile> FileSource::LookInto(const std::wstring& next, const std::wstring& pattern)
try
{
    subfolder = next;
    nextEntry = 0;
    entries.clear();
    entries = SortedEntries(Here(), pattern);
    if (root->isPattern)
        return std::nullopt;
    // The folders of a folder come after its files, in the order of their names.
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
    {
        if (entry->isFolder && !entry->isLink)
            pending.push_back(JoinPath(subfolder, entry->name));
    }
    return std::nullopt;
}
catch (const Failure& failure)
{
    return NoFile(root->isPattern ? root->name : Here(), failure.text);
}

std::optional<SourceFile> FileSource::Take(const FolderEntry& entry)
{
    if (entry.isFolder || !(root->isPattern || Counts(entry)))
        return std::nullopt;
    const std::wstring name = root->isPattern ? root->folder + entry.name : JoinPath(Here(), entry.name);
    return SourceFile{name, OpenablePathIn(Here(), entry.name), JoinPath(root->subfolder, subfolder), {}};
}

bool FileSource::Counts(const FolderEntry& file) const
{
    if (RegisteredExtension(FileExtension(file.name)))
        return true;
    return isReadable && !file.isElsewhere && !IsTemporaryName(file.name) &&
           isReadable(OpenablePathIn(Here(), file.name));
}

std::wstring FileSource::Here() const
{
    return JoinPath(root->folder, subfolder);
}

FileList AllFilesOf(FileSource source)
{
    FileList list;
    while (std::optional<SourceFile> found = source.Next())
        (found->failure ? list.failures : list.files).push_back(std::move(*found));
    return list;
}

} // namespace Lumora
