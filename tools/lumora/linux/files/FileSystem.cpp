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
#include <fnmatch.h>
#include <sys/file.h>
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
    return S_ISDIR(facts.st_mode) ? PathKind::Folder : PathKind::File;
}

/// The pattern for fnmatch, to which brackets and backslashes mean something, too.
std::string Escaped(const std::string& pattern)
{
    std::string escaped;
    for (const char character : pattern)
    {
        if (character == '[' || character == '\\')
            escaped += '\\';
        escaped += character;
    }
    return escaped;
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
{
    const std::optional<struct stat> facts = FactsOf(path);
    return facts ? std::optional(KindOf(*facts)) : std::nullopt;
}

std::vector<FolderEntry> ListFolder(const std::wstring& folder, const std::wstring& pattern)
{
    const std::string path = BytesOfName(folder);
    const std::unique_ptr<DIR, FolderCloser> opened(opendir(path.empty() ? "." : path.c_str()));
    if (!opened)
        ThrowLastError();
    const std::string wanted = Escaped(BytesOfName(pattern));
    std::vector<FolderEntry> entries;
    errno = 0;
    while (const dirent* const entry = readdir(opened.get()))
    {
        const std::string name = entry->d_name;
        struct stat link = {};
        struct stat facts = {};
        // Pipes and devices are no files: reading one could wait for ever.
        if (name != "." && name != ".." && fnmatch(wanted.c_str(), name.c_str(), 0) == 0 &&
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
    const std::string name = BytesOfName(path);
    const Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.Value() >= 0 && flock(file.Value(), LOCK_EX | LOCK_NB) == 0)
        unlink(name.c_str());
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
