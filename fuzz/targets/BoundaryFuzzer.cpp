// What is outside of the sandbox, with a module that is not the HDF5 library: the input says what each of its
// functions answers, what it writes to the linear memory and when it breaks a rule. The host must survive all
// of this.

#include "OpenedFile.h"
#include "support/JpegFile.h"

#include "formats/hdf/inside/HdfCandidate.h"
#include "formats/hdf/inside/HdfNames.h"
#include "formats/hdf/sandbox/HdfSandbox.h"

#include <hdf5_module.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <new>
#include <string_view>

using namespace Tav::Imaging::RawImage;

namespace {

FuzzedDataProvider* answers = nullptr;
/// How many samples the image has that was last told of.
uint64_t lastSamples = 0;

// Where an obedient module would put what it tells the host. A band begins at the first byte.
constexpr uint32_t candidatePlace = 0x5000;
constexpr uint32_t textPlace = 0x6000;
constexpr uint32_t argumentPlace = 0x7000;

bool OneIn(uint32_t count)
{
    return answers->ConsumeIntegralInRange<uint32_t>(1, count) == count;
}

/// Writes to the linear memory as much as it has room for.
void Write(wasm_rt_memory_t& memory, uint64_t place, std::span<const uint8_t> contents)
{
    const uint64_t first = std::min(place, memory.size);
    std::copy_n(contents.begin(), std::min<uint64_t>(contents.size(), memory.size - first),
                memory.data + first);
}

/// What any function may do before it answers: work, break a rule, take memory, and write anywhere.
void Act(Z_hdf5_instance_t& instance)
{
    wasm_rt_memory_t& memory = instance.w2c_memory;
    memory.steps -= OneIn(32) ? answers->ConsumeIntegral<uint32_t>() : 1;
    if (memory.steps < 0 || OneIn(32))
        throw HdfTrap{};
    if (OneIn(32))
        wasm_rt_grow_memory(&memory, answers->ConsumeIntegralInRange<uint32_t>(0, 2));
    if (OneIn(16))
        Write(memory, answers->ConsumeIntegral<uint32_t>() % memory.size, answers->ConsumeBytes<uint8_t>(64));
}

/// The answer that the host can use, or any other one.
template <typename Number>
Number Answer(Z_hdf5_instance_t* instance, Number useful)
{
    Act(*instance);
    if (!OneIn(16))
        return useful;
    const auto end = static_cast<Number>(instance->w2c_memory.size);
    return OneIn(2) ? end - answers->ConsumeIntegral<uint8_t>() : answers->ConsumeIntegral<Number>();
}

/// Some number of samples that is likely to be right: of one plane, or of all colours.
uint64_t SomeSamples()
{
    return lastSamples * answers->ConsumeIntegralInRange<uint64_t>(1, 8);
}

/// Writes a text that means something to the host, or any text. Returns its length.
uint32_t WriteText(Z_hdf5_instance_t* instance)
{
    std::string text = answers->PickValueInArray(
        {"/image", hdfThumbnailPath, "/Thumbnail.jpg", "/data/image/1/Data", "/Data",
         "\"format\": \"a\"\n\"version\": \"b\"\n", "\"applicationVersion\": \"c-d\"\n"});
    if (OneIn(8))
        text = answers->ConsumeRandomLengthString();
    text.push_back('\0');
    Write(instance->w2c_memory, textPlace, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    return static_cast<uint32_t>(text.size() - 1);
}

void WriteCandidate(Z_hdf5_instance_t* instance)
{
    HdfCandidate candidate{};
    candidate.dimensions =
        OneIn(8) ? answers->ConsumeIntegral<int32_t>() : answers->ConsumeIntegralInRange(2, 3);
    for (uint64_t& side : candidate.sides)
        side = OneIn(16) ? answers->ConsumeIntegral<uint64_t>()
                         : answers->ConsumeIntegralInRange<uint64_t>(31, 40);
    if (OneIn(2))
        candidate.sides[answers->ConsumeBool() ? 0 : 2] = 3;
    candidate.palettes = OneIn(8) ? answers->ConsumeIntegral<int32_t>() : 0;
    candidate.pixelType = static_cast<PixelType>(OneIn(8) ? answers->ConsumeIntegral<uint32_t>()
                                                          : answers->ConsumeIntegralInRange<uint32_t>(0, 14));
    const std::string_view interlace =
        answers->PickValueInArray({"", hdfPixelInterlace, hdfPlaneInterlace, hdfLineInterlace, "other"});
    std::ranges::copy(interlace, candidate.interlace);
    if (OneIn(8))
        std::ranges::fill(candidate.interlace, 'x'); // without an end
    lastSamples = candidate.sides[1] * candidate.sides[interlace == hdfPlaneInterlace ? 2 : 0];
    Write(instance->w2c_memory, candidatePlace,
          {reinterpret_cast<const uint8_t*>(&candidate), sizeof(candidate)});
}

/// Writes a small picture, as the bytes that a thumbnail has.
void WriteThumbnail(Z_hdf5_instance_t* instance)
{
    static const Bytes pictures[] = {JpegFile{8, 8}.Block({128}).Build(),
                                     JpegFile{7, 8}.Block({128}).Build()};
    const Bytes& picture = pictures[answers->ConsumeBool() ? 1 : 0];
    lastSamples = picture.size();
    Write(instance->w2c_memory, 0, picture);
}

} // namespace

// The module's functions.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

void Z_hdf5_init_module(void) {}

void Z_hdf5_instantiate(Z_hdf5_instance_t* instance)
{
    wasm_rt_allocate_memory(&instance->w2c_memory, 1 + answers->ConsumeBool(), 1024);
    if (OneIn(8))
        std::fill_n(instance->w2c_memory.data, instance->w2c_memory.size, uint8_t{'x'});
}

void Z_hdf5_free(Z_hdf5_instance_t* instance)
{
    wasm_rt_free_memory(&instance->w2c_memory);
}

void Z_hdf5Z__initialize(Z_hdf5_instance_t* instance)
{
    Act(*instance);
}

u32 Z_hdf5Z_allocate(Z_hdf5_instance_t* instance, u32)
{
    return Answer(instance, argumentPlace);
}

u32 Z_hdf5Z_argument(Z_hdf5_instance_t* instance)
{
    return Answer(instance, argumentPlace);
}

u32 Z_hdf5Z_open_file(Z_hdf5_instance_t* instance, u32, u32)
{
    return Answer(instance, 0U);
}

u32 Z_hdf5Z_next_dataset(Z_hdf5_instance_t* instance)
{
    return answers->remaining_bytes() == 0 ? 0 : Answer(instance, WriteText(instance));
}

u32 Z_hdf5Z_dataset_path(Z_hdf5_instance_t* instance)
{
    return Answer(instance, textPlace);
}

u32 Z_hdf5Z_examine_dataset(Z_hdf5_instance_t* instance)
{
    WriteCandidate(instance);
    return Answer(instance, candidatePlace);
}

u64 Z_hdf5Z_stored_bytes(Z_hdf5_instance_t* instance)
{
    if (OneIn(4))
        WriteThumbnail(instance);
    return Answer(instance, SomeSamples());
}

u32 Z_hdf5Z_read_string(Z_hdf5_instance_t* instance)
{
    WriteText(instance);
    return Answer(instance, textPlace);
}

u64 Z_hdf5Z_begin_dataset(Z_hdf5_instance_t* instance, u32)
{
    return Answer(instance, lastSamples * answers->PickValueInArray<uint64_t>({1, 3}));
}

u64 Z_hdf5Z_begin_series_frame(Z_hdf5_instance_t* instance, u32, u32, u32, u32)
{
    return Answer(instance, SomeSamples());
}

u32 Z_hdf5Z_read_band(Z_hdf5_instance_t* instance)
{
    return Answer(instance, static_cast<uint32_t>(SomeSamples()));
}

u32 Z_hdf5Z_band(Z_hdf5_instance_t* instance)
{
    return Answer(instance, 0U);
}

} // extern "C"
// NOLINTEND(readability-identifier-naming)

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input{data, size};
    answers = &input;
    lastSamples = 0;
    Bytes file = {0x89, 'H', 'D', 'F'};
    file.resize(64 + answers->ConsumeIntegralInRange<size_t>(0, 15));
    try
    {
        OpenedFile{file, readModeFrame}.RequirePictureOfStatedSize();
    }
    catch (const std::bad_alloc&)
    {
        // The module has no memory for the file, although an earlier instance had it.
        return 0;
    }
    return 0;
}
