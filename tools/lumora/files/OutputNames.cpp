#include "lumora/files/OutputNames.h"

#include "lumora/console/Failure.h"
#include "lumora/pictures/PictureMaker.h"

namespace Lumora {

void OutputNames::Claim(const SourceFile& file, PictureOrder& order)
{
    order.target = JoinPath(JoinPath(folder, file.subfolder), Stem(file.name));
    // All files have the same numbers behind their names, so two names are the same only if these are.
    const auto [claim, isNew] = taken.emplace(FullPath(order.target), file.name);
    if (!isNew)
        throw Failure{L"its picture would be " + FirstPictureName(order) + L", which is the picture of " +
                      claim->second + L"; -o names another folder"};
}

void PagePictureNames::Claim(const SourceFile& file, PictureOrder& order)
{
    const std::wstring name = JoinPath(JoinPath(folder, file.subfolder), FileName(file.name));
    order.target = name;
    for (size_t number = 2; !taken.insert(order.target).second; ++number)
        order.target = name + L'~' + std::to_wstring(number);
}

} // namespace Lumora
