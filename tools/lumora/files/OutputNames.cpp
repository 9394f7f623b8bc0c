#include "lumora/files/OutputNames.h"

#include "lumora/console/Failure.h"
#include "lumora/files/Hash.h"
#include "lumora/pictures/PictureMaker.h"

namespace Lumora {

namespace {

/// Eight digits that differ for different paths and sizes.
std::wstring HashText(std::wstring_view path, uint32_t size)
{
    Hash hash;
    for (const wchar_t character : path)
        hash.Add(static_cast<uint32_t>(character));
    hash.Add(size);
    return HexText(hash.Value()).substr(2);
}

} // namespace

void OutputNames::Claim(const SourceFile& file, PictureOrder& order)
{
    order.target = JoinPath(JoinPath(folder, file.subfolder), Stem(file.name));
    // All files have the same numbers behind their names, so the pictures differ if the first ones do.
    const std::wstring first = FirstPictureName(order);
    const auto [claim, isNew] = taken.emplace(FullPath(first), file.name);
    if (!isNew)
        throw Failure{L"its picture would be " + first + L", which is the picture of " + claim->second +
                      L"; -o names another folder"};
}

void PagePictureNames::Claim(const SourceFile& file, PictureOrder& order)
{
    const std::wstring name = JoinPath(JoinPath(folder, file.subfolder), FileName(file.name)) + L'-' +
                              HashText(file.path, order.longerSide.value_or(0));
    order.target = name;
    for (size_t number = 2; !taken.insert(order.target).second; ++number)
        order.target = name + L'~' + std::to_wstring(number);
}

} // namespace Lumora
