#include "metadata/Metadata.h"
#include "support/streams/TestStream.h"

#include "core/RawImage.h"
#include "core/samples/Vectorised.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

/// Ends the program if a condition does not hold that must hold for every input.
void Require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Reads every property, as the shell does.
void ReadProperties(const RawImage& image)
{
    Metadata metadata;
    metadata.FillFromImage(image);
    // One more than there are: an unknown property has no value.
    for (size_t property = 0; property <= metadataPropertyCount; ++property)
    {
        PROPVARIANT variant;
        if (metadata.Get(static_cast<MetadataProperty>(property), variant))
            PropVariantClear(&variant);
    }
}

size_t PictureBytes(const RawImageBase& reader)
{
    const bool isColour = reader.pixelType == PixelType::RGB24 || reader.pixelType == PixelType::RGBA32;
    return size_t{reader.width} * reader.height * (isColour ? 3 : 1);
}

/// Opens the file in one way. Returns the number of its frames, or nothing if that fails.
std::optional<uint32_t> Open(const std::vector<uint8_t>& file, uint32_t mode, uint32_t frameIndex)
{
    TestStream stream{file};
    RawImage image;
    const bool opened = image.Open(&stream, mode, frameIndex);
    Require(stream.references == 0);
    Require(opened == (image.Reader() != nullptr));
    ReadProperties(image);
    if (!opened)
        return std::nullopt;

    const RawImageBase& reader = *image.Reader();
    Require(frameIndex < reader.frameCount);
    // Reading the header of an HDF5 file also decodes its thumbnail. The thumbnail need not be the frame
    // that was asked for, so its size can differ.
    const bool isPictureExpected = mode == readModeFrame;
    if (reader.fileType == FileType::Hdf && !isPictureExpected)
        Require(reader.displayPixels.size() % 3 == 0);
    else
        Require(reader.displayPixels.size() == (isPictureExpected ? PictureBytes(reader) : 0));
    return reader.frameCount;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Either kind of vectors sees half of the inputs.
    UseVectors(size % 2 == 0 ? Vectors::Avx2 : Vectors::Baseline);
    const std::vector<uint8_t> file(data, data + size);
    const std::optional<uint32_t> frameCount = Open(file, readModeHeader, 0);
    Open(file, readModeFrame, 0);
    if (frameCount)
    {
        if (*frameCount > 1)
            Open(file, readModeFrame, *frameCount - 1);
        Require(!Open(file, readModeHeader, *frameCount));
    }
    return 0;
}
