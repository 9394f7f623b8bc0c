#include "formats/HdfDiscovery.h"

#include "core/Diagnostics.h"
#include "core/Identification.h"
#include "core/StreamReader.h"
#include "formats/HdfAccess.h"
#include "formats/HdfGuard.h"
#include "formats/HdfObject.h"

#include <hdf5.h>
#include <hdf5_hl.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <span>
#include <string_view>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

void Note(std::wstring_view message)
{
    WriteDiagnostic(L"HDF: ", message);
}

/// The names of a group's hard links. All other links lead elsewhere, perhaps out of the file.
class HardLinks
{
public:
    explicit HardLinks(hid_t group)
    {
        H5Literate1(group, H5_INDEX_NAME, H5_ITER_INC, nullptr, Collect, this);
        // No exception passes through the library.
        if (failure)
            std::rethrow_exception(failure);
    }

    std::vector<std::string> names;

private:
    static herr_t Collect(hid_t, const char* name, const H5L_info1_t* info, void* target)
    {
        auto& links = *static_cast<HardLinks*>(target);
        try
        {
            links.Add(name, info->type);
        }
        catch (...)
        {
            links.failure = std::current_exception();
        }
        // Blocks of a group can refer to each other in circles.
        return TakeHdfSteps() && !links.failure ? 0 : -1;
    }

    void Add(const char* name, H5L_type_t type)
    {
        constexpr size_t longestName = 1023;
        const std::string shown{name, std::min(std::strlen(name), longestName)};
        // A name with a slash or of a dot alone would be taken for a path.
        if (type == H5L_TYPE_HARD && !shown.empty() && shown != "." && shown.find('/') == std::string::npos)
            names.push_back(shown);
    }

    std::exception_ptr failure;
};

/// The text of an attribute of one fixed length, up to its zero byte; nothing for any other attribute. The
/// library's own functions for image attributes trust them.
std::optional<std::string> FixedText(hid_t dataset, const char* name,
                                     std::optional<H5T_str_t> wantedEnd = std::nullopt)
{
    constexpr hsize_t longestText = 1023;
    const HdfAttribute attribute{H5Aopen(dataset, name, H5P_DEFAULT)};
    if (!attribute.IsOpen())
        return std::nullopt;
    const HdfDataType type{H5Aget_type(attribute.id)};
    const hsize_t bytes = H5Aget_storage_size(attribute.id);
    if (H5Tget_class(type.id) != H5T_STRING || H5Tis_variable_str(type.id) != 0 || bytes == 0 ||
        bytes > longestText || (wantedEnd && H5Tget_strpad(type.id) != *wantedEnd))
        return std::nullopt;
    std::string text(static_cast<size_t>(bytes), '\0');
    if (H5Aread(attribute.id, type.id, text.data()) < 0)
        return std::nullopt;
    text.resize(std::strlen(text.c_str()));
    return text;
}

/// True for a dataset of the class "IMAGE" or of a beginning of this word, as the HDF5 image library has it.
bool HasImageClass(hid_t dataset)
{
    constexpr std::string_view imageClass = "IMAGE";
    const auto text = FixedText(dataset, "CLASS", H5T_STR_NULLTERM);
    return text && imageClass.substr(0, text->size()) == std::string_view{*text}.substr(0, imageClass.size());
}

struct ImageSize
{
    hsize_t width = 0;
    hsize_t height = 0;
    hsize_t planes = 1;
};

std::optional<ImageSize> SizeOf(hid_t dataset, const std::string& interlace)
{
    const HdfDataSpace space{H5Dget_space(dataset)};
    const int rank = space.IsOpen() ? H5Sget_simple_extent_ndims(space.id) : -1;
    std::array<hsize_t, 3> sides{};
    if (rank < 2 || rank > 3 || H5Sget_simple_extent_dims(space.id, sides.data(), nullptr) < 0)
        return std::nullopt;
    if (interlace == "INTERLACE_PIXEL" && rank == 3)
        return ImageSize{sides[1], sides[0], sides[2]};
    if (interlace == "INTERLACE_PLANE")
        return rank == 3 ? std::optional{ImageSize{sides[2], sides[1], sides[0]}} : std::nullopt;
    return ImageSize{sides[1], sides[0], 1};
}

/// The interlace that the attribute's text means; nothing, after a line, when it cannot be shown.
std::optional<HdfInterlace> InterlaceOf(const std::string& text, const std::string& name)
{
    if (text.empty())
        return name == "Data" ? HdfInterlace::Plane : HdfInterlace::Undefined;
    if (text == "INTERLACE_PIXEL")
        return HdfInterlace::Pixel;
    if (text == "INTERLACE_PLANE")
        return HdfInterlace::Plane;
    Note(text == "INTERLACE_LINE" ? L"Skipped image with not supported scan-line interlacing"
                                  : L"Skipped image with unknown interlace format");
    return std::nullopt;
}

bool IsShownSide(hsize_t side)
{
    return side >= 32 && side <= 8192;
}

/// True for the beginning of a file that a reader of ours takes: a thumbnail that is one would lead back
/// here.
bool IsOwnFormat(const std::vector<uint8_t>& file)
{
    if (file.size() < identificationBytes)
        return false;
    switch (Identify(std::span<const uint8_t, identificationBytes>{file.data(), identificationBytes}))
    {
    case Identity::Unknown:
    case Identity::EnhancedMetafile:
    case Identity::Bitmap:
    case Identity::Jpeg:
    case Identity::TiffLittleEndian:
    case Identity::TiffBigEndian:
        return false;
    default:
        return true;
    }
}

} // namespace

HdfDiscovery::Level::Level(hid_t identifier, size_t length, bool isImage)
    : group(identifier), names(HardLinks{identifier}.names), pathLength(length), isCalledImage(isImage)
{}

std::optional<JpegPicture> DecodeHdfThumbnail(hid_t location, const std::string& name)
{
    constexpr hsize_t largestFile = 0x2000000;
    constexpr uint32_t longestSide = 8192;
    const HdfDataSet dataset{H5Dopen2(location, name.c_str(), H5P_DEFAULT)};
    if (!dataset.IsOpen() || IsStoredElsewhere(dataset.id))
        return std::nullopt;
    const uint64_t storedBytes = HdfStoredBytes(dataset.id);
    const HdfDataSpace space{H5Dget_space(dataset.id)};
    const hssize_t count = space.IsOpen() ? H5Sget_simple_extent_npoints(space.id) : -1;
    if (storedBytes < 1 || storedBytes > largestFile || count < 1 ||
        static_cast<hsize_t>(count) > largestFile)
        return std::nullopt;
    std::vector<uint8_t> file(static_cast<size_t>(count));
    if (!ReadHdfDataset(dataset.id, H5T_NATIVE_UCHAR, file.size(), file.data()) || IsOwnFormat(file))
        return std::nullopt;
    return DecodeJpeg(file, longestSide);
}

void HdfDiscovery::Walk(hid_t file)
{
    Enter(file, "/", false);
    while (!levels.empty())
    {
        Level& level = levels.back();
        path.resize(level.pathLength);
        if (level.next == level.names.size())
            levels.pop_back();
        else
            Visit(level, level.names[level.next++]);
    }
}

void HdfDiscovery::Enter(hid_t parent, const std::string& name, bool isCalledImage)
{
    const Level& level =
        levels.emplace_back(H5Gopen2(parent, name.c_str(), H5P_DEFAULT), path.size(), isCalledImage);
    if (!level.group.IsOpen())
        levels.pop_back();
}

void HdfDiscovery::Visit(const Level& level, const std::string& name)
{
    // No file of sense is deeper. The paths of all its datasets would take the square of the file's size.
    constexpr size_t deepestGroup = 256;
    H5O_info1_t info{};
    if (H5Oget_info_by_name2(level.group.id, name.c_str(), &info, H5O_INFO_BASIC, H5P_DEFAULT) < 0)
        return;
    path += "/" + name;
    const bool isCalledImage = level.isCalledImage || ToLower(name).find("image") != std::string::npos;
    if (info.type == H5O_TYPE_DATASET)
        CheckDataset(level.group.id, name, isCalledImage);
    else if (info.type == H5O_TYPE_GROUP && levels.size() < deepestGroup &&
             // Hard links can make circles.
             visited.insert(info.addr).second)
        Enter(level.group.id, name, isCalledImage);
}

void HdfDiscovery::CheckDataset(hid_t group, const std::string& name, bool isCalledImage)
{
    if (!IsThumbnailPath(path))
        CheckImage(group, name, isCalledImage);
    else if (!AddThumbnail(group, name))
        Note(L"Could not read jpeg image");
}

bool HdfDiscovery::AddThumbnail(hid_t group, const std::string& name)
{
    // Letter case makes thousands of such names, and each takes its time.
    constexpr uint32_t mostThumbnails = 16;
    if (++thumbnailCount > mostThumbnails)
        return false;
    std::optional<JpegPicture> picture = DecodeHdfThumbnail(group, name);
    if (!picture)
        return false;
    thumbnail = std::move(*picture);
    thumbnailPath = path;
    found.Add({.width = thumbnail.width,
               .height = thumbnail.height,
               .seriesFrames = thumbnail.frameCount,
               .pixelType = PixelType::RGB24,
               .path = path,
               .interlace = HdfInterlace::Pixel},
              1);
    return true;
}

void HdfDiscovery::CheckImage(hid_t group, const std::string& name, bool isCalledImage)
{
    const HdfDataSet dataset{H5Dopen2(group, name.c_str(), H5P_DEFAULT)};
    if (!dataset.IsOpen() || IsStoredElsewhere(dataset.id) || (!isCalledImage && !HasImageClass(dataset.id)))
        return;
    PixelType pixelType = NativePixelType(dataset.id);
    if (pixelType == PixelType::Unknown)
        return;

    std::string interlaceText;
    if (H5Aexists(dataset.id, "INTERLACE_MODE") != 0)
    {
        const auto text = FixedText(dataset.id, "INTERLACE_MODE");
        if (!text)
            return;
        interlaceText = *text;
    }
    const auto size = SizeOf(dataset.id, interlaceText);
    hssize_t palettes = 0;
    if (!size || H5IMget_npalettes(group, name.c_str(), &palettes) < 0)
        return;

    const auto interlace = InterlaceOf(interlaceText, name);
    if (!interlace)
        return;
    if (palettes >= 1)
        return Note(L"Skipped image with color palette");
    if (!IsShownSide(size->width) || !IsShownSide(size->height))
        return;
    if (pixelType == PixelType::UInt8 && size->planes == 3)
    {
        pixelType = PixelType::RGB24;
        if (*interlace == HdfInterlace::Undefined)
            return Note(L"Skipped RGB image with undefined interlace format");
    }

    const uint64_t frameBytes = BytesPerPixel(pixelType) * size->height * size->width;
    const uint64_t storedBytes = HdfStoredBytes(dataset.id);
    if (storedBytes == 0 || frameBytes == 0)
        return;
    if (storedBytes % frameBytes != 0)
        return Note(L"Skipped image series with invalid data size");
    const uint64_t frames = storedBytes / frameBytes;
    if (frames >= 2 && *interlace != HdfInterlace::Plane)
        return Note(L"Skipped not supported image series");
    found.Add({.width = static_cast<uint32_t>(size->width),
               .height = static_cast<uint32_t>(size->height),
               .seriesFrames = static_cast<uint32_t>(std::min<uint64_t>(frames, UINT32_MAX)),
               .pixelType = pixelType,
               .path = path,
               .interlace = *interlace},
              frames);
}

} // namespace Tav::Imaging::RawImage
