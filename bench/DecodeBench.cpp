#include "Measurement.h"
#include "Micrograph.h"
#include "core/RawImageBase.h"
#include "core/samples/Vectorised.h"
#include "support/streams/TestStream.h"

#include <string>

using namespace Tav::Imaging::RawImage;

namespace {

/// A file that is nothing but one frame.
class FrameReader : public RawImageBase
{
public:
    FrameReader(PixelType type, uint32_t edge)
    {
        pixelType = type;
        width = edge;
        height = edge;
    }

    bool Read(IStream* stream, uint64_t streamSize, uint32_t, uint32_t) override
    {
        return ConvertToDisplay(stream, streamSize, 0);
    }
};

void DecodeFrame(benchmark::State& state, PixelType type, uint32_t edge, Vectors vectors)
{
    const Vectors before = VectorsInUse();
    if (!UseVectors(vectors))
        return state.SkipWithError("this processor has no such vectors");
    TestStream stream{MicrographFrame(type, edge)};
    RunDecode(state, stream.bytes, edge, [&] {
        FrameReader reader{type, edge};
        return reader.Read(&stream, stream.bytes.size(), readModeFrame, 0);
    });
    UseVectors(before);
}

void Register(const std::string& group, PixelType type, uint32_t edge, Vectors vectors)
{
    const std::wstring name = PixelTypeName(type);
    const std::string label =
        group + '/' + std::string(name.begin(), name.end()) + '/' + std::to_string(edge);
    benchmark::RegisterBenchmark(label.c_str(), [=](benchmark::State& state) {
        DecodeFrame(state, type, edge, vectors);
    })->Unit(benchmark::kMillisecond);
}

[[maybe_unused]] const int registered = [] {
    for (uint32_t value = 1; value <= 14; ++value)
        Register("Decode", static_cast<PixelType>(value), 4096, VectorsInUse());
    Register("Decode", PixelType::UInt16, 192, VectorsInUse());
    for (uint32_t value = 1; value <= 14; ++value)
        Register("DecodeWithBaselineVectors", static_cast<PixelType>(value), 4096, Vectors::Baseline);
    return 0;
}();

} // namespace
