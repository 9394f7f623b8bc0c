#include "lumora/pictures/UnfinishedFile.h"

#include "lumora/console/Failure.h"
#include "lumora/files/ByteFile.h"
#include "lumora/files/FileSystem.h"
#include "lumora/files/Paths.h"

namespace Lumora {

namespace {

std::wstring UnfinishedName(const std::wstring& finalPath)
{
    return finalPath + unfinishedFileEnd;
}

/// Whether the file is empty, or begins like this.
bool IsReplaceable(const std::wstring& path, std::string_view signature)
{
    std::string start(signature.size(), '\0');
    bool isWhole = false;
    const auto failure = FailureOf([&] {
        ByteFile file = ByteFile::Open(path);
        isWhole = ReadWhole(file, {reinterpret_cast<uint8_t*>(start.data()), start.size()});
    });
    return !failure && (isWhole ? start == signature : FileSize(path) == 0);
}

} // namespace

UnfinishedFile::UnfinishedFile(const std::wstring& finalPath, std::string_view signature)
    : path(UnfinishedName(finalPath)), target(finalPath)
{
    if (const std::wstring_view folder = ParentFolder(finalPath); !folder.empty())
        MakeFolder(folder);
    RequireFreePlace(target, signature);
    WithName(L"cannot write " + std::wstring(FileName(target)), [this] { lock.emplace(path); });
}

UnfinishedFile::~UnfinishedFile()
{
    // Without the lock, or with its last name, the file is not ours.
    if (lock && !isKept)
        RemoveFile(path);
}

void UnfinishedFile::RequireFreePlace(const std::wstring& finalPath, std::string_view signature)
{
    const std::wstring_view last = FileName(finalPath);
    const std::wstring name = last.empty() ? finalPath : std::wstring(last);
    const std::optional<PathKind> found = FoundAt(finalPath);
    if (!found)
        return;
    if (found == PathKind::Folder)
        throw Failure{L"there is a folder of the name " + name + L"; -o names another place"};
    if (found == PathKind::Other || !IsReplaceable(finalPath, signature))
        throw Failure{L"there is a file of another kind of the name " + name + L"; -o names another place"};
}

bool UnfinishedFile::WasLeftBehind(const std::wstring& finalPath) noexcept
{
    return FoundAt(UnfinishedName(finalPath)).has_value();
}

void UnfinishedFile::Keep()
{
    if (const auto failure = FailureOf([this] { RenameFile(path, target); }))
        throw Failure{L"cannot give the file its name: " + *failure};
    isKept = true;
}

} // namespace Lumora
