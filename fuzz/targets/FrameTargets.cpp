// The conversion of a frame by itself, whatever file it may come from: any size, layout and samples.

#include "Target.h"
#include "support/display/FrameReader.h"
#include "support/display/ReferenceDisplay.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"

#include "core/samples/Vectorised.h"

#include <fuzzer/FuzzedDataProvider.h>

using namespace Tav::Imaging::RawImage;

namespace {

uint32_t SomeSize(FuzzedDataProvider& input)
{
    return input.ConsumeIntegralInRange(0, 15) == 0 ? input.ConsumeIntegral<uint32_t>()
                                                    : input.ConsumeIntegralInRange<uint32_t>(0, 64);
}

/// Fills a frame with few numbers, which repeat: so a few bytes of input make a large frame.
Bytes SomeSamples(FuzzedDataProvider& input, uint64_t count)
{
    constexpr uint64_t most = 65536;
    const auto repeats = input.ConsumeIntegralInRange<size_t>(1, 64);
    const auto some = input.ConsumeRemainingBytes<uint8_t>();
    Bytes bytes(some.empty() ? 0 : std::min({count, most, some.size() * repeats}));
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = some[i % some.size()];
    return bytes;
}

void ConvertSomeFrame(std::span<const uint8_t> data)
{
    UseVectors(data.size() % 2 == 0 ? Vectors::Avx2 : Vectors::Baseline);
    FuzzedDataProvider input{data.data(), data.size()};
    StoredFrame frame;
    frame.pixelType = static_cast<PixelType>(input.ConsumeIntegralInRange<uint32_t>(0, 20));
    frame.width = SomeSize(input);
    frame.height = SomeSize(input);
    frame.byteOrder = input.ConsumeBool() ? ByteOrder::BigEndian : ByteOrder::LittleEndian;
    frame.flipVertical = input.ConsumeBool();
    frame.fileType = input.PickValueInArray({FileType::Ser, FileType::Mrc, FileType::Mrc2014, FileType::Raw});
    if (input.ConsumeIntegralInRange(0, 3) == 0)
    {
        frame.xStride = SomeSize(input);
        frame.yStride = SomeSize(input);
    }
    const uint64_t samplesOffset = input.ConsumeIntegralInRange<uint64_t>(0, 99);
    const uint64_t samples = uint64_t{frame.width} * frame.height;
    frame.bytes = SomeSamples(input, samples * BytesPerPixel(frame.pixelType) + 40);

    Bytes file(samplesOffset, 0xEE);
    file.insert(file.end(), frame.bytes.begin(), frame.bytes.end());
    TestStream stream{std::move(file)};
    FrameReader reader{frame};
    DiagnosticLines diagnostics;
    const bool shown = reader.ConvertToDisplay(&stream, stream.bytes.size(), samplesOffset);
    const Lines lines = diagnostics.Take();

    const DisplayedFrame expected = ReferenceDisplay(frame);
    Require(stream.references == 0);
    Require(shown == expected.shown);
    Require(lines == expected.lines);
    Require(reader.displayPixels == expected.pixels);
}

} // namespace

std::vector<Target> FrameTargets()
{
    return {{"frames", ConvertSomeFrame}};
}
