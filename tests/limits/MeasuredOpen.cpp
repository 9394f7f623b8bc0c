#include "limits/MeasuredOpen.h"

#include "metadata/Metadata.h"
#include "support/meters/MemoryMeter.h"
#include "support/meters/PaintedStack.h"
#include "support/meters/StepMeter.h"
#include "support/streams/TestStream.h"

#include "core/RawImage.h"

using namespace Tav::Imaging::RawImage;

namespace {

constexpr size_t stackBytes = size_t{512} << 10;

void ReadProperties(const Metadata& metadata)
{
    for (size_t property = 0; property < metadataPropertyCount; ++property)
    {
        PROPVARIANT variant;
        if (metadata.Get(static_cast<MetadataProperty>(property), variant))
            PropVariantClear(&variant);
    }
}

} // namespace

MeasuredOpen::MeasuredOpen(const Bytes& file, uint32_t mode, uint32_t frameIndex)
{
    static PaintedStack painted{stackBytes};
    TestStream stream{file};
    stack = painted.Run([&] {
        const MemoryMeter memoryMeter;
        const StepMeter stepMeter;
        Metadata metadata;
        {
            RawImage image;
            if (image.Open(&stream, mode, frameIndex))
            {
                const RawImageBase& reader = *image.Reader();
                frameCount = reader.frameCount;
                if (!reader.displayPixels.empty())
                    frameBytes = static_cast<int64_t>(uint64_t{BytesPerPixel(reader.pixelType)} *
                                                          reader.width * reader.height +
                                                      reader.displayPixels.size());
            }
            metadata.FillFromImage(image);
        }
        // The shell asks when the file is closed.
        ReadProperties(metadata);
        memory = memoryMeter.Peak();
        steps = stepMeter.Steps();
    });
}
