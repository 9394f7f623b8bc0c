#include "lumora/files/FileSystem.h"

#include "lumora/files/NameText.h"
#include "lumora/files/Paths.h"
#include "lumora/linux/Errors.h"
#include "lumora/linux/files/FileHandle.h"

#include <cerrno>
#include <compare>
#include <cstdio>
#include <memory>
#include <tuple>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumora {

namespace {

std::optional<struct stat> FactsOf(const std::wstring& path) noexcept
try
{
    struct stat facts = {};
    if (stat(BytesOfName(path).c_str(), &facts) != 0)
        return std::nullopt;
    return facts;
}
catch (const std::bad_alloc&)
{
    return std::nullopt;
}

PathKind KindOf(const struct stat& facts) noexcept
{
    if (S_ISDIR(facts.st_mode))
        return PathKind::Folder;
    return S_ISREG(facts.st_mode) ? PathKind::File : PathKind::Other;
}

/// Whether the whole name is as the pattern says: * stands for any characters, ? for one.
bool Matches(std::wstring_view pattern, std::wstring_view name) noexcept
{
    // Where to go on if the last * must stand for one more character.
    size_t star = std::wstring_view::npos;
    size_t taken = 0;
    size_t place = 0;
    for (size_t position = 0; position < name.size();)
    {
        if (place < pattern.size() && pattern[place] == L'*')
        {
            star = ++place;
            taken = position;
        }
        else if (place < pattern.size() && (pattern[place] == L'?' || pattern[place] == name[position]))
        {
            ++place;
            ++position;
        }
        else if (star != std::wstring_view::npos)
        {
            place = star;
            position = ++taken;
        }
        else
        {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', place) == std::wstring_view::npos;
}

struct FolderCloser
{
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};

} // namespace

PathKind KindOf(const std::wstring& path)
{
    const std::optional<struct stat> facts = FactsOf(path);
    if (!facts)
        ThrowLastError();
    return KindOf(*facts);
}

std::optional<PathKind> FoundAt(const std::wstring& path) noexcept
try
{
    if (const std::optional<struct stat> facts = FactsOf(path))
        return KindOf(*facts);
    struct stat link = {};
    return lstat(BytesOfName(path).c_str(), &link) == 0 ? std::optional(PathKind::Other) : std::nullopt;
}
catch (const std::bad_alloc&)
{
    return std::nullopt;
}

std::vector<FolderEntry> ListFolder(const std::wstring& folder, const std::wstring& pattern)
{
    const std::string path = BytesOfName(folder);
    const std::unique_ptr<DIR, FolderCloser> opened(opendir(path.empty() ? "." : path.c_str()));
    if (!opened)
        ThrowLastError();
    std::vector<FolderEntry> entries;
    errno = 0;
    while (const dirent* const entry = readdir(opened.get()))
    {
        const std::string name = entry->d_name;
        struct stat link = {};
        struct stat facts = {};
        // Pipes and devices are no files: reading one could wait for ever.
        if (name != "." && name != ".." && Matches(pattern, TextOfName(name)) &&
            fstatat(dirfd(opened.get()), name.c_str(), &link, AT_SYMLINK_NOFOLLOW) == 0 &&
            fstatat(dirfd(opened.get()), name.c_str(), &facts, 0) == 0 &&
            (S_ISREG(facts.st_mode) || S_ISDIR(facts.st_mode)))
            entries.push_back({TextOfName(name), S_ISDIR(facts.st_mode), S_ISLNK(link.st_mode), false});
        errno = 0;
    }
    if (errno != 0)
        ThrowLastError();
    return entries;
}

void MakeFolder(std::wstring_view folder)
{
    while (folder.size() > 1 && folder.ends_with(L'/'))
        folder.remove_suffix(1);
    const std::string path = BytesOfName(folder);
    constexpr mode_t usualMode = 0777;
    int error = mkdir(path.c_str(), usualMode) == 0 ? 0 : errno;
    if (error == ENOENT && !ParentFolder(folder).empty())
    {
        MakeFolder(ParentFolder(folder));
        error = mkdir(path.c_str(), usualMode) == 0 ? 0 : errno;
    }
    // Another process may have made it in the meantime.
    if (error != 0 && FoundAt(std::wstring(folder)) != PathKind::Folder)
        throw Failure{L"cannot make the folder " + std::wstring(folder) + L": " + DescribeError(error)};
}

std::optional<uint64_t> FileSize(const std::wstring& path) noexcept
{
    const std::optional<struct stat> facts = FactsOf(path);
    return facts ? std::optional(static_cast<uint64_t>(facts->st_size)) : std::nullopt;
}

bool IsUpToDate(const std::wstring& path, const std::wstring& source) noexcept
{
    const std::optional<struct stat> target = FactsOf(path);
    const std::optional<struct stat> origin = FactsOf(source);
    return target && origin &&
           std::tie(target->st_mtim.tv_sec, target->st_mtim.tv_nsec) >=
               std::tie(origin->st_mtim.tv_sec, origin->st_mtim.tv_nsec);
}

void RemoveFile(const std::wstring& path) noexcept
try
{
    unlink(BytesOfName(path).c_str());
}
catch (const std::bad_alloc&)
{
    // It stays, as it would if the program were killed.
}

void RenameFile(const std::wstring& from, const std::wstring& to)
{
    if (std::rename(BytesOfName(from).c_str(), BytesOfName(to).c_str()) != 0)
        ThrowLastError();
}

} // namespace Lumora
