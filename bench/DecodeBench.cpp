#include "Measurement.h"
#include "Micrograph.h"
#include "core/RawImageBase.h"
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

void DecodeFrame(benchmark::State& state, PixelType type, uint32_t edge)
{
    TestStream stream{MicrographFrame(type, edge)};
    RunDecode(state, stream.bytes, edge, [&] {
        FrameReader reader{type, edge};
        return reader.Read(&stream, stream.bytes.size(), readModeFrame, 0);
    });
}

[[maybe_unused]] const int registered = [] {
    const auto add = [](PixelType type, uint32_t edge) {
        const std::wstring name = PixelTypeName(type);
        const std::string label =
            "Decode/" + std::string(name.begin(), name.end()) + '/' + std::to_string(edge);
        benchmark::RegisterBenchmark(label.c_str(), [type, edge](benchmark::State& state) {
            DecodeFrame(state, type, edge);
        })->Unit(benchmark::kMillisecond);
    };
    for (uint32_t value = 1; value <= 14; ++value)
        add(static_cast<PixelType>(value), 4096);
    add(PixelType::UInt16, 192);
    return 0;
}();

} // namespace
