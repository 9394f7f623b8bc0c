#include "lumora/files/OutputNames.h"

#include "lumora/console/Failure.h"
#include "lumora/files/FileSystem.h"

namespace Lumora {

OutputNames::OutputNames(std::wstring pictureFolder, const std::vector<SourceFile>& sources)
    : folder(std::move(pictureFolder))
{
    for (const SourceFile& source : sources)
        taken.emplace(source.path, L"a source");
}

std::wstring OutputNames::Claim(const SourceFile& file, std::optional<uint32_t> frame)
{
    const std::wstring place = JoinPath(folder, file.subfolder);
    std::wstring name(Stem(file.name));
    if (frame)
        name += L'-' + std::to_wstring(*frame);
    name = JoinPath(place, name + L".png");

    const std::wstring path = OpenablePath(name);
    const auto [claim, isNew] = taken.emplace(path, L"the picture of " + file.name);
    const bool isSource = IsSameFile(path, file.path);
    if (!isNew || isSource)
        throw Failure{L"its picture would be " + name + L", which is " +
                      (isSource ? L"the file itself" : claim->second) + L"; -o names another folder"};
    if (!place.empty())
        MakeFolder(place);
    return name;
}

} // namespace Lumora
