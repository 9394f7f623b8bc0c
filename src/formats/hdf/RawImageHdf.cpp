#include "formats/hdf/RawImageHdf.h"

#include "core/display/FrameConversion.h"
#include "core/stream/Text.h"
#include "formats/hdf/HdfLog.h"
#include "formats/hdf/HdfMutexLock.h"
#include "formats/hdf/HdfThumbnail.h"
#include "formats/hdf/Json.h"
#include "formats/hdf/entries/HdfDiscovery.h"
#include "formats/hdf/entries/HdfPaths.h"
#include "formats/hdf/inside/HdfNames.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

constexpr uint64_t largestFile = 0x20000000;

bool IsShown(PixelType pixelType)
{
    switch (pixelType)
    {
    case PixelType::UInt16:
    case PixelType::UInt32:
    case PixelType::Int16:
    case PixelType::Int32:
    case PixelType::Float32:
        return true;
    default:
        return false;
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
        return hdfLog.Fail(L"File is too large (>512MB)");
    entries.clear();
    if (!lock.Acquire())
        return hdfLog.Fail(L"Mutex timeout");
    HdfContents file{stream, streamSize};
    return file.Open() ? ReadFile(file, frameIndex) : hdfLog.Fail(L"Could not open file");
}

bool RawImageHdf::ReadFile(HdfContents& file, uint32_t frameIndex)
{
    HdfDiscovery discovery{file};
    displayPixels = FrameBytes(discovery.thumbnail.pixels);
    discovery.thumbnail.pixels = {};
    entries = discovery.found.Entries(frameIndex == 0);
    if (entries.empty())
        return hdfLog.Fail(L"No images found");
    if (frameIndex >= entries.size())
        return hdfLog.Fail(L"Frame index is out of range");
    const HdfImageEntry& entry = entries[frameIndex];
    frameCount = static_cast<uint32_t>(entries.size());
    width = entry.width;
    height = entry.height;
    pixelType = entry.pixelType;
    ReadTexts(file);
    if (readMode == readModeHeader)
        return true;

    if (IsThumbnailPath(entry.path))
    {
        hdfLog.Write(L"Using embedded jpeg thumbnail");
        const JpegPicture& decoded = discovery.thumbnail;
        if (entry.path == discovery.thumbnailPath && decoded.width == width && decoded.height == height)
            return true;
        // There can be several thumbnails, whose paths differ in letter case.
        std::optional<JpegPicture> picture = DecodeHdfThumbnail(file, entry.path);
        if (!picture || picture->width != width || picture->height != height)
            return hdfLog.Fail(L"Could not read jpeg image");
        displayPixels = FrameBytes(picture->pixels);
        return true;
    }
    if (pixelType == PixelType::RGB24)
        return ReadColourFrame(file, entry);
    if (!IsShown(pixelType))
        return hdfLog.Fail(L"Unsupported pixel type");
    return ReadGrayFrame(file, entry);
}

void RawImageHdf::ReadTexts(HdfContents& file)
{
    std::string version;
    std::string format;
    if (std::optional<std::string> text = file.ReadString(hdfVersionText))
    {
        const Json json{std::move(*text)};
        if (json.GetString(hdfVersionKey, version) && json.GetString(hdfFormatKey, format))
            formatDetails = L"Data version: " + WidenText(format) + L" " + WidenText(version);
    }
    std::string application;
    std::optional<std::string> info = file.ReadString(hdfInfoText);
    if (info && Json{std::move(*info)}.GetString(hdfApplicationKey, application))
    {
        // What follows the first dash names a build.
        const size_t dash = application.find('-');
        if (dash != std::string::npos && dash > 0)
            application.resize(dash);
        if (!format.empty() && !application.empty())
            software = WidenText(format) + L" " + WidenText(application);
    }
}

bool RawImageHdf::ReadGrayFrame(HdfContents& file, const HdfImageEntry& entry)
{
    FrameBytes frame{size_t{BytesPerPixel(pixelType)} * width * height};
    const std::span<uint8_t> samples{frame.data(), frame.size()};
    if (entry.seriesFrames < 2 || entry.interlace != HdfInterlace::Plane)
    {
        if (!file.ReadDataset(entry.path, pixelType, samples))
            return hdfLog.Fail(L"Could not read the image data");
    }
    else if (!file.ReadSeriesFrame(entry, samples))
    {
        return hdfLog.Fail(L"Could not read the first frame of the series");
    }
    ConvertFrame(*this, std::move(frame));
    return true;
}

bool RawImageHdf::ReadColourFrame(HdfContents& file, const HdfImageEntry& entry)
{
    const size_t pixelCount = size_t{width} * height;
    if (entry.interlace != HdfInterlace::Pixel && entry.interlace != HdfInterlace::Plane)
        return hdfLog.Fail(L"Unsupported interlace format");
    FrameBytes stored(3 * pixelCount);
    if (!file.ReadDataset(entry.path, PixelType::UInt8, {stored.data(), stored.size()}))
        return hdfLog.Fail(L"Could not read the image data");
    if (entry.interlace == HdfInterlace::Pixel)
    {
        displayPixels = std::move(stored);
        return true;
    }
    displayPixels = FrameBytes(3 * pixelCount);
    for (size_t pixel = 0; pixel < pixelCount; ++pixel)
    {
        for (size_t colour = 0; colour < 3; ++colour)
            displayPixels[3 * pixel + colour] = stored[colour * pixelCount + pixel];
    }
    return true;
}

} // namespace Tav::Imaging::RawImage
