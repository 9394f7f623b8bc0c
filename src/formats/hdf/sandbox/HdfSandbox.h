#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <span>
#include <string>

namespace Tav::Imaging::RawImage {

/// Ends a sandbox in which something went wrong: it accessed memory that it does not have, called something
/// that is not a function, or used up its steps or its stack. The sandbox is not called again.
class HdfTrap : public std::exception
{};

/// One instance of the HDF5 library and of the code in hdf/inside, compiled to code that can access only its
/// own linear memory. What a call returns is not trusted. The code inside cannot access the host's memory,
/// files, the time or other threads. Any thread may call it, one at a time.
class HdfSandbox
{
public:
    /// An address in the linear memory.
    using Address = uint32_t;

    /// The linear memory never has more than `memoryBytes`, and all calls together take at most `steps` steps
    /// of work. Throws std::bad_alloc, as every call does, when the host has no memory.
    HdfSandbox(uint64_t memoryBytes, int64_t steps);
    HdfSandbox(const HdfSandbox&) = delete;
    HdfSandbox& operator=(const HdfSandbox&) = delete;
    ~HdfSandbox();

    [[nodiscard]] int64_t StepsLeft() const noexcept;
    void AddSteps(int64_t steps) noexcept;

    /// The linear memory, until the next call.
    [[nodiscard]] std::span<uint8_t> Memory() noexcept;
    /// A part of the linear memory. Throws HdfTrap if it does not lie within. Counts the steps for copying
    /// it.
    [[nodiscard]] std::span<uint8_t> Bytes(Address first, uint64_t count);
    /// The text that ends with the next zero byte. Throws HdfTrap when there is none in `longest` bytes.
    [[nodiscard]] std::string Text(Address first, uint64_t longest);

    // The functions of hdf/inside/Exports.cpp. They throw HdfTrap.
    [[nodiscard]] Address Allocate(uint32_t bytes);
    [[nodiscard]] Address Argument();
    [[nodiscard]] int32_t OpenFile(Address image, uint32_t bytes);
    [[nodiscard]] uint32_t NextDataset();
    [[nodiscard]] Address DatasetPath();
    [[nodiscard]] Address ExamineDataset();
    [[nodiscard]] uint64_t StoredBytes();
    [[nodiscard]] Address ReadString();
    [[nodiscard]] int64_t BeginDataset(uint32_t pixelType);
    [[nodiscard]] int64_t BeginSeriesFrame(uint32_t pixelType, uint32_t height, uint32_t width,
                                           uint32_t frame);
    [[nodiscard]] int32_t ReadBand();
    [[nodiscard]] Address Band();

private:
    struct Instance;

    template <typename Function, typename... Arguments>
    auto Call(Function function, Arguments... arguments);

    std::unique_ptr<Instance> instance;
};

} // namespace Tav::Imaging::RawImage
