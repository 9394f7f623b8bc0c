#include "lumora/files/FileList.h"

#include "lumora/console/Failure.h"
#include "lumora/files/FileSystem.h"
#include "lumora/files/Paths.h"
#include "lumora/pictures/PropertyReader.h"
#include "registration/Formats.h"

#include <windows.h>

#include <algorithm>
#include <memory>

namespace Lumora {

namespace {

struct FindCloser
{
    void operator()(HANDLE search) const noexcept { FindClose(search); }
};

struct FolderEntry
{
    std::wstring name;
    bool isFolder;
    /// A link to another place, which may lead back to the folder of the link.
    bool isLink;
    bool isElsewhere;
};

/// Folders of the cloud are reparse points, too, but no links.
bool IsLink(const WIN32_FIND_DATAW& found) noexcept
{
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           IsReparseTagNameSurrogate(found.dwReserved0);
}

/// The entries of a folder that match the pattern, sorted by name.
std::vector<FolderEntry> ListFolder(const std::wstring& folder, const std::wstring& pattern)
{
    std::vector<FolderEntry> entries;
    WIN32_FIND_DATAW found = {};
    const HANDLE first = FindFirstFileW(OpenablePath(JoinPath(folder, pattern)).c_str(), &found);
    if (first == INVALID_HANDLE_VALUE)
    {
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND)
            return entries;
        throw Failure{DescribeError(error)};
    }
    const std::unique_ptr<void, FindCloser> search(first);
    do
    {
        const std::wstring name = found.cFileName;
        if (name != L"." && name != L"..")
            entries.push_back({name, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0, IsLink(found),
                               IsElsewhere(found.dwFileAttributes)});
    } while (FindNextFileW(first, &found));
    std::sort(entries.begin(), entries.end(), [](const FolderEntry& left, const FolderEntry& right) {
        return NameLess{}(left.name, right.name);
    });
    return entries;
}

class Finder
{
public:
    Finder(FolderRule rule, Console& console) : rule(rule), console(console) {}
    Finder(const Finder&) = delete;
    Finder& operator=(const Finder&) = delete;
    ~Finder() { console.ShowPassing({}); }

    void Find(const std::wstring& path)
    try
    {
        if (FileName(path).find_first_of(L"*?") != std::wstring::npos)
        {
            FindMatching(path);
            return;
        }
        const DWORD attributes = GetFileAttributesW(OpenablePath(path).c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES)
            throw Failure{DescribeError(GetLastError())};
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            FindBelow(path);
        else
            Add(path, {});
    }
    catch (const Failure& failure)
    {
        Complain(path, failure);
    }

    FileList list;

private:
    void Add(const std::wstring& name, const std::wstring& subfolder)
    {
        list.files.push_back({name, OpenablePath(name), subfolder});
    }

    void FindMatching(const std::wstring& pattern)
    {
        const size_t before = list.files.size();
        const std::wstring folder(ParentFolder(pattern));
        for (const FolderEntry& entry : ListFolder(folder, std::wstring(FileName(pattern))))
        {
            if (!entry.isFolder)
                Add(folder + entry.name, {});
        }
        if (list.files.size() == before)
            throw Failure{L"no file has such a name"};
    }

    void FindBelow(const std::wstring& folder)
    {
        const size_t before = list.files.size() + list.failures;
        std::vector<std::wstring> pending = {{}};
        while (!pending.empty())
        {
            const std::wstring subfolder = std::move(pending.back());
            pending.pop_back();
            FindIn(folder, subfolder, pending);
        }
        if (list.files.size() + list.failures == before)
            throw Failure{L"there is no file for Lumora in this folder"};
    }

    /// Adds the files of one folder and notes its subfolders. If a folder cannot be listed, the search
    /// continues with the others.
    void FindIn(const std::wstring& folder, const std::wstring& subfolder, std::vector<std::wstring>& pending)
    try
    {
        const std::wstring here = JoinPath(folder, subfolder);
        console.ShowPassing(L"looking for files in " + here);
        const size_t firstPending = pending.size();
        for (const FolderEntry& entry : ListFolder(here, L"*"))
        {
            if (!entry.isFolder && Counts(entry, here))
                Add(JoinPath(here, entry.name), subfolder);
            if (entry.isFolder && !entry.isLink)
                pending.push_back(JoinPath(subfolder, entry.name));
        }
        // The search takes the last one first.
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(firstPending), pending.end());
    }
    catch (const Failure& failure)
    {
        Complain(JoinPath(folder, subfolder), failure);
    }

    [[nodiscard]] bool Counts(const FolderEntry& file, const std::wstring& folder) const
    {
        if (RegisteredExtension(FileExtension(file.name)))
            return true;
        if (rule == FolderRule::RegisteredExtension || file.isElsewhere)
            return false;
        return !FailureOf(
            [&] { static_cast<void>(ReadProperties(OpenablePath(JoinPath(folder, file.name)))); });
    }

    void Complain(const std::wstring& path, const Failure& failure)
    {
        console.Complain(L"lumora: " + path + L": " + failure.text);
        ++list.failures;
    }

    FolderRule rule;
    Console& console;
};

} // namespace

FileList FindFiles(const std::vector<std::wstring>& paths, FolderRule rule, Console& console)
{
    Finder finder(rule, console);
    for (const std::wstring& path : paths)
        finder.Find(path);
    return std::move(finder.list);
}

} // namespace Lumora
