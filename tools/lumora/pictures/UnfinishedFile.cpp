#include "lumora/pictures/UnfinishedFile.h"

#include "lumora/console/Failure.h"

#include <windows.h>

namespace Lumora {

UnfinishedFile::UnfinishedFile(const std::wstring& finalPath)
    : path(finalPath + L'.' + std::to_wstring(GetCurrentProcessId()) + L".part"), target(finalPath)
{}

UnfinishedFile::~UnfinishedFile()
{
    DeleteFileW(path.c_str());
}

void UnfinishedFile::Keep() const
{
    if (!MoveFileExW(path.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING))
        throw Failure{L"cannot name the picture: " + DescribeError(GetLastError())};
}

} // namespace Lumora
