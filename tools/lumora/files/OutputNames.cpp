#include "lumora/files/OutputNames.h"

#include "lumora/console/Failure.h"
#include "lumora/pictures/PictureMaker.h"

namespace Lumora {

namespace {

/// Eight digits that differ for different paths and sizes, by the FNV-1a hash.
std::wstring HashText(std::wstring_view path, uint32_t size)
{
    constexpr uint32_t basis = 2'166'136'261;
    constexpr uint32_t prime = 16'777'619;
    uint32_t hash = basis;
    const auto add = [&hash](uint32_t value) { hash = (hash ^ value) * prime; };
    for (const wchar_t character : path)
        add(static_cast<uint32_t>(character));
    add(size);
    return HexText(hash).substr(2);
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
