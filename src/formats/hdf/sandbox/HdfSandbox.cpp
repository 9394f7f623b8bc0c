#include "formats/hdf/sandbox/HdfSandbox.h"

#include "platform/ThreadStack.h"

// The library, as translated by wasm2c.
#include <hdf5_module.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace Tav::Imaging::RawImage {

namespace {

constexpr uint64_t pageBytes = 0x10000;
constexpr uint64_t mostPages = 0xFFFF;

/// The stack that a call may use: a small part of the 1 MiB that a thread has by default. Ordinary files need
/// a quarter of it.
constexpr size_t stackBytes = 0x30000;

/// Copying this many bytes costs one step.
constexpr uint64_t bytesPerStep = 64;

} // namespace

struct HdfSandbox::Instance
{
    Instance(uint32_t pages, int64_t steps)
    {
        static const bool isModuleReady = (Z_hdf5_init_module(), true);
        static_cast<void>(isModuleReady);
        module.w2c_memory.max_pages = pages;
        module.w2c_memory.steps = steps;
    }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    ~Instance() { Z_hdf5_free(&module); }

    Z_hdf5_instance_t module{};
};

/// Any thread may call, so each call sets the stack limit for its thread.
template <typename Function, typename... Arguments>
auto HdfSandbox::Call(Function function, Arguments... arguments)
{
    instance->module.w2c_memory.stack_limit = LowestStack(stackBytes);
    return function(&instance->module, arguments...);
}

HdfSandbox::HdfSandbox(uint64_t memoryBytes, int64_t steps)
{
    const uint64_t pages = memoryBytes / pageBytes + 1;
    // 32 bits cannot address more.
    if (pages > mostPages)
        throw std::bad_alloc();
    instance = std::make_unique<Instance>(static_cast<uint32_t>(pages), steps);
    Call(Z_hdf5_instantiate);
    Call(Z_hdf5Z__initialize);
}

HdfSandbox::~HdfSandbox() = default;

int64_t HdfSandbox::StepsLeft() const noexcept
{
    return instance->module.w2c_memory.steps;
}

void HdfSandbox::AddSteps(int64_t steps) noexcept
{
    instance->module.w2c_memory.steps += steps;
}

std::span<uint8_t> HdfSandbox::Memory() noexcept
{
    return {instance->module.w2c_memory.data, static_cast<size_t>(instance->module.w2c_memory.size)};
}

std::span<uint8_t> HdfSandbox::Bytes(Address first, uint64_t count)
{
    const std::span<uint8_t> memory = Memory();
    if (first > memory.size() || count > memory.size() - first)
        throw HdfTrap{};
    AddSteps(-static_cast<int64_t>(count / bytesPerStep));
    if (StepsLeft() < 0)
        throw HdfTrap{};
    return memory.subspan(first, static_cast<size_t>(count));
}

std::string HdfSandbox::Text(Address first, uint64_t longest)
{
    const std::span<uint8_t> memory = Memory();
    const std::span<uint8_t> behind = memory.subspan(std::min<size_t>(first, memory.size()));
    const std::span<uint8_t> possible = behind.first(std::min<uint64_t>(longest + 1, behind.size()));
    const auto end = std::ranges::find(possible, uint8_t{0});
    if (end == possible.end())
        throw HdfTrap{};
    const std::span<uint8_t> text = Bytes(first, static_cast<uint64_t>(end - possible.begin()));
    return {text.begin(), text.end()};
}

HdfSandbox::Address HdfSandbox::Allocate(uint32_t bytes)
{
    return Call(Z_hdf5Z_allocate, bytes);
}

HdfSandbox::Address HdfSandbox::Argument()
{
    return Call(Z_hdf5Z_argument);
}

int32_t HdfSandbox::OpenFile(Address image, uint32_t bytes)
{
    return static_cast<int32_t>(Call(Z_hdf5Z_open_file, image, bytes));
}

uint32_t HdfSandbox::NextDataset()
{
    return Call(Z_hdf5Z_next_dataset);
}

HdfSandbox::Address HdfSandbox::DatasetPath()
{
    return Call(Z_hdf5Z_dataset_path);
}

HdfSandbox::Address HdfSandbox::ExamineDataset()
{
    return Call(Z_hdf5Z_examine_dataset);
}

uint64_t HdfSandbox::StoredBytes()
{
    return Call(Z_hdf5Z_stored_bytes);
}

HdfSandbox::Address HdfSandbox::ReadString()
{
    return Call(Z_hdf5Z_read_string);
}

int64_t HdfSandbox::BeginDataset(uint32_t pixelType)
{
    return static_cast<int64_t>(Call(Z_hdf5Z_begin_dataset, pixelType));
}

int64_t HdfSandbox::BeginSeriesFrame(uint32_t pixelType, uint32_t height, uint32_t width, uint32_t frame)
{
    return static_cast<int64_t>(Call(Z_hdf5Z_begin_series_frame, pixelType, height, width, frame));
}

int32_t HdfSandbox::ReadBand()
{
    return static_cast<int32_t>(Call(Z_hdf5Z_read_band));
}

HdfSandbox::Address HdfSandbox::Band()
{
    return Call(Z_hdf5Z_band);
}

} // namespace Tav::Imaging::RawImage
