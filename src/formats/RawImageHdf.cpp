#include "formats/RawImageHdf.h"

#include "core/Diagnostics.h"
#include "core/FrameConversion.h"
#include "core/Json.h"
#include "core/Text.h"
#include "formats/HdfAccess.h"
#include "formats/HdfDiscovery.h"
#include "formats/HdfGuard.h"
#include "formats/HdfLibrary.h"
#include "formats/HdfMutexLock.h"
#include "formats/HdfObject.h"
#include "formats/HdfSelection.h"

#include <hdf5.h>

#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

constexpr uint64_t largestFile = 0x20000000;

bool Fail(std::wstring_view message) noexcept
{
    WriteDiagnostic(L"HDF: ", message);
    return false;
}

std::wstring Widen(const std::string& text)
{
    return WidenText({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

/// The samples in memory have the dataset's own type: what no conversion touches keeps its sign.
hid_t MemoryType(PixelType pixelType)
{
    switch (pixelType)
    {
    case PixelType::UInt16:
        return H5T_NATIVE_USHORT;
    case PixelType::UInt32:
        return H5T_NATIVE_UINT;
    case PixelType::Int16:
        return H5T_NATIVE_SHORT;
    case PixelType::Int32:
        return H5T_NATIVE_INT;
    case PixelType::Float32:
        return H5T_NATIVE_FLOAT;
    default:
        return H5I_INVALID_HID;
    }
}

} // namespace

RawImageHdf::~RawImageHdf()
{
    if (mutex)
        ReleaseMutex(mutex);
}

bool RawImageHdf::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    const HdfMutexLock lock{OpenMutexW(MUTEX_ALL_ACCESS, 0, hdfMutexName)};
    fileType = FileType::Hdf;
    readMode = mode;
    if (streamSize > largestFile)
        return Fail(L"File is too large (>512MB)");
    entries.clear();
    if (!lock.Acquire())
        return Fail(L"Mutex timeout");
    // The library lets go of the bytes last of all, also of a file that damage keeps from being closed.
    std::vector<uint8_t> image;
    const HdfLibrary library;
    const bool isRead =
        library.IsReady() ? ReadFile(stream, streamSize, image, frameIndex) : Fail(L"Could not open file");
    if (library.HasRunOutOfMemory())
        throw std::bad_alloc();
    return isRead;
}

bool RawImageHdf::ReadFile(IStream* stream, uint64_t streamSize, std::vector<uint8_t>& image,
                           uint32_t frameIndex)
{
    const HdfFile file{OpenHdfFileImage(stream, streamSize, image)};
    if (!file.IsOpen())
        return Fail(L"Could not open file");
    // Closing the file is not limited: the library must let go of the bytes.
    const HdfGuard guard{image};
    HdfDiscovery discovery;
    discovery.Walk(file.id);
    displayPixels = std::move(discovery.thumbnail.pixels);
    entries = discovery.found.Entries(frameIndex == 0);
    if (entries.empty())
        return Fail(L"No images found");
    if (frameIndex >= entries.size())
        return Fail(L"Frame index is out of range");
    const HdfImageEntry& entry = entries[frameIndex];
    frameCount = static_cast<uint32_t>(entries.size());
    width = entry.width;
    height = entry.height;
    pixelType = entry.pixelType;
    ReadTexts(file.id);
    if (readMode == readModeHeader)
        return true;

    if (IsThumbnailPath(entry.path))
    {
        WriteDiagnostic(L"HDF: ", L"Using embedded jpeg thumbnail");
        if (entry.path == discovery.thumbnailPath)
            return true;
        // Spelled otherwise, there can be several.
        std::optional<JpegPicture> picture = DecodeHdfThumbnail(file.id, entry.path);
        if (!picture)
            return Fail(L"Could not read jpeg image");
        displayPixels = std::move(picture->pixels);
        return true;
    }
    if (pixelType == PixelType::RGB24)
        return ReadColourFrame(file.id, entry);
    if (MemoryType(pixelType) < 0)
        return Fail(L"Unsupported pixel type");
    return ReadGrayFrame(file.id, entry);
}

void RawImageHdf::ReadTexts(hid_t file)
{
    std::string text;
    std::string version;
    std::string format;
    if (ReadHdfStringDataset(file, "Version", text))
    {
        const Json json{text};
        if (json.GetString("version", version) && json.GetString("format", format))
            formatDetails = L"Data version: " + Widen(format) + L" " + Widen(version);
    }
    std::string application;
    if (ReadHdfStringDataset(file, "Info", text) && Json{text}.GetString("applicationVersion", application))
    {
        // What follows the first dash names a build.
        const size_t dash = application.find('-');
        if (dash != std::string::npos && dash > 0)
            application.resize(dash);
        if (!format.empty() && !application.empty())
            software = Widen(format) + L" " + Widen(application);
    }
}

bool RawImageHdf::ReadGrayFrame(hid_t file, const HdfImageEntry& entry)
{
    std::vector<uint8_t> frame(size_t{BytesPerPixel(pixelType)} * width * height);
    if (entry.seriesFrames < 2 || entry.interlace != HdfInterlace::Plane)
    {
        const HdfDataSet dataset{H5Dopen2(file, entry.path.c_str(), H5P_DEFAULT)};
        if (!dataset.IsOpen() ||
            !ReadHdfDataset(dataset.id, MemoryType(pixelType), uint64_t{width} * height, frame.data()))
            return Fail(L"Could not read the image data");
    }
    else if (!ReadHdfSeriesFrame(file, entry, frame.data()))
    {
        return Fail(L"Could not read the first frame of the series");
    }
    ConvertFrame(*this, frame);
    return true;
}

bool RawImageHdf::ReadColourFrame(hid_t file, const HdfImageEntry& entry)
{
    const size_t pixelCount = size_t{width} * height;
    if (entry.interlace != HdfInterlace::Pixel && entry.interlace != HdfInterlace::Plane)
        return Fail(L"Unsupported interlace format");
    const HdfDataSet dataset{H5Dopen2(file, entry.path.c_str(), H5P_DEFAULT)};
    std::vector<uint8_t> stored(3 * pixelCount);
    if (!dataset.IsOpen() || !ReadHdfDataset(dataset.id, H5T_NATIVE_UCHAR, stored.size(), stored.data()))
        return Fail(L"Could not read the image data");
    if (entry.interlace == HdfInterlace::Pixel)
    {
        displayPixels = std::move(stored);
        return true;
    }
    displayPixels.resize(3 * pixelCount);
    for (size_t pixel = 0; pixel < pixelCount; ++pixel)
    {
        for (size_t colour = 0; colour < 3; ++colour)
            displayPixels[3 * pixel + colour] = stored[colour * pixelCount + pixel];
    }
    return true;
}

} // namespace Tav::Imaging::RawImage
