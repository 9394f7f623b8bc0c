#include "Measurement.h"
#include "Micrograph.h"
#include "core/RawImage.h"
#include "core/RawImageBase.h"
#include "formats/hdf/HdfContents.h"
#include "formats/hdf/sandbox/HdfSandbox.h"
#include "support/files/BinFile.h"
#include "support/files/DmFile.h"
#include "support/files/EmiFile.h"
#include "support/files/Hdf5File.h"
#include "support/files/LatticeFile.h"
#include "support/files/MrcFile.h"
#include "support/files/NpyFile.h"
#include "support/files/RawFile.h"
#include "support/files/SerFile.h"
#include "support/streams/SparseStream.h"

#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>

using namespace Tav::Imaging::RawImage;

namespace {

/// A realistic file of one format.
struct BenchFile
{
    const char* name;
    /// The stream, and the frame to show.
    std::function<std::unique_ptr<TestStream>()> open;
    uint32_t frameIndex = 0;
};

std::unique_ptr<TestStream> InMemory(std::vector<uint8_t> bytes)
{
    return std::make_unique<TestStream>(std::move(bytes));
}

std::unique_ptr<TestStream> MrcStream(uint32_t mode, PixelType type, uint32_t edge)
{
    return InMemory(MrcFile().Size(edge, edge, 1).Mode(mode).Samples(MicrographFrame(type, edge)).Build());
}

/// A version 4 file: a thumbnail, 2,000 small tags, and an image of 4096 x 4096 floats.
std::unique_ptr<TestStream> DmStream()
{
    const DmLayout layout{4};
    DmTags tags{layout};
    for (int i = 0; i < 500; ++i)
        tags.UInt32("Count", 1)
            .String("Operator", u"somebody")
            .Value("Voltage", DmType::float64, std::vector<uint8_t>(8));
    for (int i = 0; i < 500; ++i)
        tags.Group("Device", DmTags{layout});
    const DmImage thumbnail = {.dataType = 23,
                               .width = 384,
                               .height = 384,
                               .elementType = DmType::int32,
                               .elementCount = 384 * 384,
                               .samples = MicrographFrame(PixelType::RGBA32, 384)};
    const DmImage image = {.dataType = 2,
                           .width = 4096,
                           .height = 4096,
                           .elementType = DmType::float32,
                           .elementCount = 4096 * 4096,
                           .samples = MicrographFrame(PixelType::Float32, 4096)};
    DmTags images{layout};
    images.Image(thumbnail).Image(image);
    return InMemory(
        DmFile{layout}.Root(DmTags{layout}.Group("ImageList", images).Group("Tags", tags)).Build());
}

/// A series of 1,000 frames of 1024 x 1024 16-bit samples, of which only frame 500 has its samples.
std::unique_ptr<TestStream> SerStream()
{
    constexpr uint32_t frames = 1000;
    constexpr uint32_t edge = 1024;
    constexpr uint64_t elementBytes = SerElement::headerBytes + uint64_t{2} * edge * edge;
    SerFile file;
    file.Version(0x0220);
    for (uint32_t i = 0; i < frames; ++i)
        file.Element({});
    const uint64_t firstElement = file.FirstElement();
    for (uint32_t i = 0; i < frames; ++i)
        file.ElementOffset(i, firstElement + i * elementBytes);
    std::vector<uint8_t> start = file.Build();
    start.resize(firstElement);
    const SerElement chosen{2, edge, edge, MicrographFrame(PixelType::UInt16, edge)};
    return std::make_unique<SparseStream>(firstElement + frames * elementBytes, std::move(start),
                                          firstElement + 500 * elementBytes, chosen.Build());
}

/// 20 images of 1024 x 1024 16-bit samples.
std::unique_ptr<TestStream> EmiStream()
{
    const std::vector<uint8_t> samples = MicrographFrame(PixelType::UInt16, 1024);
    EmiFile file;
    file.VersionText("4.3.0.123");
    for (int i = 0; i < 20; ++i)
        file.Array(0x2206, 1024, 1024, samples);
    return InMemory(file.Build());
}

std::unique_ptr<TestStream> HdfStream()
{
    return InMemory(
        Hdf5File()
            .DataSet("/image", H5T_STD_U16LE, {4096, 4096}, MicrographFrame(PixelType::UInt16, 4096))
            .Build());
}

/// 60 frames of 2048 x 2048 16-bit samples, nearly the largest file that is read. The frame's number runs
/// fastest, so the samples of a frame lie far apart unless it has a chunk of its own.
std::unique_ptr<TestStream> HdfSeriesStream(const Hdf5Storage& storage)
{
    constexpr size_t frames = 60;
    const std::vector<uint8_t> frame = MicrographFrame(PixelType::UInt16, 2048);
    std::vector<uint8_t> samples(frames * frame.size());
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = frame[i / (2 * frames) * 2 + i % 2];
    return InMemory(Hdf5File()
                        .DataSet("/Data/Image/1/Data", H5T_STD_U16LE, {2048, 2048, frames}, samples, storage)
                        .Build());
}

/// A small file as programs write it, with groups, a series, a thumbnail and texts.
std::unique_ptr<TestStream> HdfSampleStream()
{
    std::ifstream file{LUMORA_SOURCE_TREE "/samples/acquisition.h5", std::ios::binary};
    return InMemory({std::istreambuf_iterator<char>{file}, {}});
}

std::unique_ptr<TestStream> NpyStream()
{
    return InMemory(NpyFile()
                        .Descr("<u2")
                        .Shape("(4096, 4096)")
                        .Samples(MicrographFrame(PixelType::UInt16, 4096))
                        .Build());
}

std::unique_ptr<TestStream> RawStream()
{
    return InMemory(RawFile()
                        .Size(4096, 4096)
                        .Samples(16, RawFile::Unsigned, MicrographFrame(PixelType::UInt16, 4096))
                        .Build());
}

std::unique_ptr<TestStream> BinStream()
{
    return InMemory(BinFile().Size(4096, 4096).Samples(2, MicrographFrame(PixelType::UInt16, 4096)).Build());
}

/// A volume of 512 x 512 x 512 16-bit samples, of which only the slice in the middle has its samples.
std::unique_ptr<TestStream> LatticeStream()
{
    constexpr uint64_t sliceBytes = 2 * 512 * 512;
    std::vector<uint8_t> header = LatticeFile().Size(512, 512, 512).Type("ushort").Build();
    const uint64_t start = header.size();
    return std::make_unique<SparseStream>(start + 512 * sliceBytes, std::move(header),
                                          start + 256 * sliceBytes, MicrographFrame(PixelType::UInt16, 512));
}

const Hdf5Storage chunkPerFrame = {.chunk = {2048, 2048, 1}};

constexpr uint64_t sandboxBytes = 0x4000000;
constexpr int64_t sandboxSteps = 1'000'000;

/// What each HDF5 file pays for its sandbox, before the library in it has been started.
void MakeSandbox(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(HdfSandbox{sandboxBytes, sandboxSteps});
}

/// A compressed dataset of 4096 x 4096 16-bit samples. As an image it would be left out, because its stored
/// size is no multiple of a frame's.
void UnpackHdf(benchmark::State& state)
{
    const std::unique_ptr<TestStream> stream =
        InMemory(Hdf5File()
                     .DataSet("/data", H5T_STD_U16LE, {4096, 4096}, MicrographFrame(PixelType::UInt16, 4096),
                              {.chunk = {256, 256}, .isCompressed = true})
                     .Build());
    std::vector<uint8_t> samples(size_t{2} * 4096 * 4096);
    for (auto _ : state)
    {
        HdfContents file{stream.get(), stream->bytes.size()};
        if (!file.Open() || !file.ReadDataset("/data", PixelType::UInt16, samples))
            return state.SkipWithError("the dataset was refused");
    }
}

const BenchFile benchFiles[] = {
    {"Mrc/Int8/4096", [] { return MrcStream(0, PixelType::Int8, 4096); }},
    {"Mrc/Int16/4096", [] { return MrcStream(1, PixelType::Int16, 4096); }},
    {"Mrc/Float32/512", [] { return MrcStream(2, PixelType::Float32, 512); }},
    {"Mrc/Float32/2048", [] { return MrcStream(2, PixelType::Float32, 2048); }},
    {"Mrc/Float32/4096", [] { return MrcStream(2, PixelType::Float32, 4096); }},
    {"Mrc/Float32/8192", [] { return MrcStream(2, PixelType::Float32, 8192); }},
    {"Mrc/UInt16/4096", [] { return MrcStream(6, PixelType::UInt16, 4096); }},
    {"Dm4/Float32/4096/2000tags", DmStream},
    {"Ser/UInt16/1024/1000frames", SerStream, 500},
    {"Emi/UInt16/1024/20images", EmiStream, 10},
    {"Hdf/sample", HdfSampleStream},
    {"Hdf/UInt16/4096", HdfStream},
    {"Hdf/UInt16/2048/60frames", [] { return HdfSeriesStream({}); }, 30},
    {"Hdf/UInt16/2048/60frames/chunked", [] { return HdfSeriesStream(chunkPerFrame); }, 50},
    {"Npy/UInt16/4096", NpyStream},
    {"Raw/UInt16/4096", RawStream},
    {"Bin/UInt16/4096", BinStream},
    {"Lattice/UInt16/512x512x512", LatticeStream},
};

/// Opens the file again and again, and tells how much of it was read each time.
template <typename Run>
void CountReads(benchmark::State& state, TestStream& stream, Run run)
{
    run();
    const auto opens = static_cast<double>(state.iterations());
    state.counters["bytes_read"] = static_cast<double>(stream.bytesRead) / opens;
    state.counters["read_calls"] = stream.readCalls / opens;
}

void OpenFrame(benchmark::State& state, const BenchFile& file)
{
    const std::unique_ptr<TestStream> stream = file.open();
    RawImage image;
    if (!image.Open(stream.get(), readModeHeader, file.frameIndex))
        return state.SkipWithError("the header was refused");
    const RawImageBase& reader = *image.Reader();
    const std::vector<uint8_t> raw(size_t{BytesPerPixel(reader.pixelType)} * reader.width * reader.height);
    const uint32_t edge = reader.width;
    stream->bytesRead = 0;
    stream->readCalls = 0;
    CountReads(state, *stream, [&] {
        RunDecode(state, raw, edge, [&] {
            RawImage opened;
            return opened.Open(stream.get(), readModeFrame, file.frameIndex);
        });
    });
}

void OpenHeader(benchmark::State& state, const BenchFile& file)
{
    const std::unique_ptr<TestStream> stream = file.open();
    CountReads(state, *stream, [&] {
        for (auto _ : state)
        {
            RawImage image;
            if (!image.Open(stream.get(), readModeHeader, file.frameIndex))
                return state.SkipWithError("the header was refused");
        }
    });
}

[[maybe_unused]] const int registered = [] {
    const auto add = [](const std::string& name, auto function) {
        benchmark::RegisterBenchmark(name.c_str(), function)->Unit(benchmark::kMillisecond);
    };
    add("Hdf/Sandbox", MakeSandbox);
    add("Hdf/Unpack/UInt16/4096", UnpackHdf);
    for (const BenchFile& file : benchFiles)
    {
        add(std::string("Open/") + file.name, [&file](benchmark::State& state) { OpenFrame(state, file); });
        add(std::string("OpenHeader/") + file.name,
            [&file](benchmark::State& state) { OpenHeader(state, file); });
    }
    return 0;
}();

} // namespace
