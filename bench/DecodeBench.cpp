#include "core/RawImage.h"
#include "core/RawImageBase.h"
#include "support/MrcFile.h"
#include "support/TestStream.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <random>

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

template <typename Sample>
void AppendSample(std::vector<uint8_t>& bytes, double value)
{
    const auto sample = static_cast<Sample>(value);
    const auto* const begin = reinterpret_cast<const uint8_t*>(&sample);
    bytes.insert(bytes.end(), begin, begin + sizeof(sample));
}

/// Samples like a micrograph's: a slope, a few bright spots, and noise.
std::vector<uint8_t> MicrographFrame(PixelType type, uint32_t edge)
{
    std::mt19937 random{20140};
    std::normal_distribution<double> noise{0, 6};
    std::vector<uint8_t> bytes;
    bytes.reserve(size_t{BytesPerPixel(type)} * edge * edge);
    for (uint32_t y = 0; y < edge; ++y)
    {
        for (uint32_t x = 0; x < edge; ++x)
        {
            const double spot = x % 512 < 16 && y % 512 < 16 ? 60 : 0;
            const double level =
                std::clamp(80.0 + 40.0 * (x + y) / (2.0 * edge) + spot + noise(random), 0.0, 255.0);
            switch (type)
            {
            case PixelType::UInt4:
            case PixelType::UInt8:
                AppendSample<uint8_t>(bytes, level);
                break;
            case PixelType::Int8:
                AppendSample<int8_t>(bytes, level - 128);
                break;
            case PixelType::UInt16:
                AppendSample<uint16_t>(bytes, 30 * level);
                break;
            case PixelType::Int16:
                AppendSample<int16_t>(bytes, 30 * level - 2000);
                break;
            case PixelType::UInt32:
                AppendSample<uint32_t>(bytes, 3000 * level);
                break;
            case PixelType::Int32:
                AppendSample<int32_t>(bytes, 3000 * level - 200000);
                break;
            case PixelType::Float16:
                AppendSample<uint16_t>(bytes, 0x4000 + 8 * level);
                break;
            case PixelType::Float32:
                AppendSample<float>(bytes, level - 100);
                break;
            case PixelType::Double64:
                AppendSample<double>(bytes, level - 100);
                break;
            case PixelType::Complex64:
                AppendSample<float>(bytes, level);
                AppendSample<float>(bytes, 0.5 * level);
                break;
            case PixelType::Complex128:
                AppendSample<double>(bytes, level);
                AppendSample<double>(bytes, 0.5 * level);
                break;
            default: // colours
                for (uint32_t channel = 0; channel < BytesPerPixel(type); ++channel)
                    AppendSample<uint8_t>(bytes, level);
                break;
            }
        }
    }
    return bytes;
}

double SecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Time that a copy of the same bytes takes, into memory that is already there.
double CopySeconds(const std::vector<uint8_t>& bytes)
{
    std::vector<uint8_t> target(bytes.size());
    double best = 1e9;
    for (int run = 0; run < 7; ++run)
    {
        const auto start = std::chrono::steady_clock::now();
        std::memcpy(target.data(), bytes.data(), bytes.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
        best = std::min(best, SecondsSince(start));
    }
    return best;
}

/// Runs one decode per iteration and reports its cost against the copy and per pixel.
template <typename Decode>
void RunDecode(benchmark::State& state, const std::vector<uint8_t>& raw, uint32_t edge, Decode decode)
{
    const double copySeconds = CopySeconds(raw);
    double best = 1e9;
    for (auto _ : state)
    {
        const auto start = std::chrono::steady_clock::now();
        if (!decode())
        {
            state.SkipWithError("the frame was refused");
            return;
        }
        best = std::min(best, SecondsSince(start));
    }
    state.counters["memcpy_ms"] = copySeconds * 1e3;
    state.counters["x_memcpy"] = best / copySeconds;
    state.counters["ns_per_pixel"] = best * 1e9 / (static_cast<double>(edge) * edge);
}

void DecodeFrame(benchmark::State& state, PixelType type, uint32_t edge)
{
    TestStream stream{MicrographFrame(type, edge)};
    RunDecode(state, stream.bytes, edge, [&] {
        FrameReader reader{type, edge};
        return reader.Read(&stream, stream.bytes.size(), readModeFrame, 0);
    });
}

std::vector<uint8_t> MrcBytes(uint32_t mode, PixelType type, uint32_t edge)
{
    return MrcFile().Size(edge, edge, 1).Mode(mode).Samples(MicrographFrame(type, edge)).Build();
}

void OpenMrc(benchmark::State& state, uint32_t mode, PixelType type, uint32_t edge)
{
    TestStream stream{MrcBytes(mode, type, edge)};
    RunDecode(state, stream.bytes, edge, [&] {
        RawImage image;
        return image.Open(&stream, readModeFrame, 0);
    });
}

void OpenMrcHeader(benchmark::State& state, uint32_t edge)
{
    TestStream stream{MrcBytes(2, PixelType::Float32, edge)};
    for (auto _ : state)
    {
        RawImage image;
        if (!image.Open(&stream, readModeHeader, 0))
            state.SkipWithError("the header was refused");
    }
    const auto opens = static_cast<double>(state.iterations());
    state.counters["bytes_read"] = static_cast<double>(stream.bytesRead) / opens;
    state.counters["read_calls"] = stream.readCalls / opens;
}

[[maybe_unused]] const int registered = [] {
    const auto add = [](const std::string& name, auto function) {
        benchmark::RegisterBenchmark(name.c_str(), function)->Unit(benchmark::kMillisecond);
    };
    for (uint32_t value = 1; value <= 14; ++value)
    {
        const auto type = static_cast<PixelType>(value);
        const std::wstring wide = PixelTypeName(type);
        add("Decode/" + std::string(wide.begin(), wide.end()) + "/4096",
            [type](benchmark::State& state) { DecodeFrame(state, type, 4096); });
    }
    add("Open/Mrc/Int8/4096", [](benchmark::State& state) { OpenMrc(state, 0, PixelType::Int8, 4096); });
    add("Open/Mrc/Int16/4096", [](benchmark::State& state) { OpenMrc(state, 1, PixelType::Int16, 4096); });
    for (const uint32_t edge : {512u, 2048u, 4096u, 8192u})
        add("Open/Mrc/Float32/" + std::to_string(edge),
            [edge](benchmark::State& state) { OpenMrc(state, 2, PixelType::Float32, edge); });
    add("Open/Mrc/UInt16/4096", [](benchmark::State& state) { OpenMrc(state, 6, PixelType::UInt16, 4096); });
    add("OpenHeader/Mrc/4096", [](benchmark::State& state) { OpenMrcHeader(state, 4096); });
    return 0;
}();

} // namespace
