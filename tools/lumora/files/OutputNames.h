#pragma once

#include "lumora/batch/FileTask.h"
#include "lumora/files/FileSource.h"
#include "lumora/files/Paths.h"

#include <map>
#include <set>
#include <string>

namespace Lumora {

/// Chooses the names of pictures, so that no two files have the same.
class OutputNames
{
public:
    explicit OutputNames(std::wstring pictureFolder) : folder(std::move(pictureFolder)) {}

    /// Names the pictures after the file without its extension. Throws a Failure if another file has that
    /// name.
    void Claim(const SourceFile& file, PictureOrder& order);

private:
    std::wstring folder;
    /// Names that are taken, and the files that have them.
    std::map<std::wstring, std::wstring, NameLess> taken;
};

/// Chooses the names of the pictures of a page, which nobody but the page needs to know.
class PagePictureNames
{
public:
    explicit PagePictureNames(std::wstring pictureFolder) : folder(std::move(pictureFolder)) {}

    /// Names the picture after the whole name of the file. Another file of that name in another folder, or
    /// another size, gives another name, so that an earlier picture is never taken for that of another file.
    void Claim(const SourceFile& file, PictureOrder& order);

private:
    std::wstring folder;
    std::set<std::wstring, NameLess> taken;
};

} // namespace Lumora
