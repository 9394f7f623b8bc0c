// Opens files of each format: the header alone, and one picture, which is compared with that of the
// reference.

#include "OpenedFile.h"

#include "formats/Identification.h"

#include <algorithm>

using namespace Tav::Imaging::RawImage;

namespace {

struct Format
{
    std::string name;
    std::vector<Identity> identities;
};

const std::vector<Format>& Formats()
{
    static const std::vector<Format> formats = {
        {"mrc", {Identity::Mrc}}, {"dm", {Identity::Dm3, Identity::Dm4}},
        {"ser", {Identity::Ser}}, {"emi", {Identity::Emi}},
        {"npy", {Identity::Npy}}, {"raw", {Identity::Raw}},
        {"bin", {Identity::Bin}}, {"lattice", {Identity::Lattice}},
        {"hdf", {Identity::Hdf}},
    };
    return formats;
}

/// Whether the file would get this format's reader. A target that took other files would only repeat the work
/// of the other targets.
bool IsOf(const Format& format, std::span<const uint8_t> file)
{
    return file.size() >= identificationBytes &&
           std::ranges::count(format.identities, Identify(file.first<identificationBytes>())) > 0;
}

void ReadHeader(std::span<const uint8_t> file)
{
    OpenedFile{file, readModeHeader}.RequirePictureOfStatedSize();
}

void ReadPicture(std::span<const uint8_t> file)
{
    OpenedFile{file, readModeFrame}.RequireReferencePicture();
}

/// Reading the header of an HDF5 file also decodes its thumbnail, which need not have the size of the frame.
void ReadHdfHeader(std::span<const uint8_t> file)
{
    const OpenedFile opened{file, readModeHeader};
    Require(!opened.image.Reader() || opened.image.Reader()->displayPixels.size() % 3 == 0);
}

/// Nobody outside the sandbox knows the samples, so only the size can be compared.
void ReadHdfPicture(std::span<const uint8_t> file)
{
    OpenedFile{file, readModeFrame}.RequirePictureOfStatedSize();
}

} // namespace

std::vector<Target> FileTargets()
{
    std::vector<Target> targets;
    for (const Format& format : Formats())
    {
        const auto add = [&](const char* what, void (*read)(std::span<const uint8_t>)) {
            targets.push_back({what + format.name, [&format, read](std::span<const uint8_t> file) {
                                   if (IsOf(format, file))
                                       read(file);
                               }});
        };
        const bool isHdf = format.name == "hdf";
        add("headers_", isHdf ? ReadHdfHeader : ReadHeader);
        add("pictures_", isHdf ? ReadHdfPicture : ReadPicture);
    }
    return targets;
}
