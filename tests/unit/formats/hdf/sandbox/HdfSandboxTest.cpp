#include "formats/hdf/sandbox/HdfSandbox.h"

#include "formats/hdf/HdfContents.h"
#include "support/RandomSeed.h"
#include "support/files/Hdf5File.h"
#include "support/gray/SmallStack.h"
#include "support/streams/TestStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

constexpr uint64_t enoughMemory = 0x4000000;
constexpr int64_t enoughSteps = 100'000'000;

/// Datasets of each storage, groups in each other, texts and attributes: much for damage to hit.
const Bytes& VariedFile()
{
    static const Bytes file =
        Hdf5File()
            .AnyDataSet("/a/image", H5T_STD_U16BE, {40, 50})
            .Text("/a/image", "CLASS", "IMAGE")
            .AnyDataSet("/a/b/image", H5T_STD_I32LE, {64, 64}, {.chunk = {16, 16}})
            .AnyDataSet("/image", H5T_IEEE_F32LE, {64, 64, 3}, {.chunk = {32, 32, 1}, .isCompressed = true})
            .HardLink("/a", "/a/b/circle")
            .Strings("/Version", {"\"version\": \"1\""})
            .Strings("/Info", {std::string(1000, 'i')})
            .Build();
    return file;
}

HdfSandbox::Address PutFile(HdfSandbox& sandbox, const Bytes& file)
{
    const HdfSandbox::Address image = sandbox.Allocate(static_cast<uint32_t>(file.size()));
    std::ranges::copy(file, sandbox.Bytes(image, file.size()).begin());
    return image;
}

void PassPath(HdfSandbox& sandbox, const std::string& path)
{
    std::ranges::copy(path + '\0', sandbox.Bytes(sandbox.Argument(), path.size() + 1).begin());
}

/// A number made of all that a file gives, by every call that there is, after the file has been opened and
/// `disturb` has been called.
uint64_t SumOfAll(
    HdfSandbox& sandbox, const Bytes& file,
    const std::function<void(HdfSandbox&)>& disturb = [](HdfSandbox&) {})
{
    uint64_t sum = 0;
    const auto add = [&sum](uint64_t value) { sum = sum * 31 + value; };
    const auto addBytes = [&add](std::span<const uint8_t> bytes) {
        add(std::hash<std::string_view>{}({reinterpret_cast<const char*>(bytes.data()), bytes.size()}));
    };
    std::vector<std::string> paths;
    const auto opened =
        static_cast<uint32_t>(sandbox.OpenFile(PutFile(sandbox, file), static_cast<uint32_t>(file.size())));
    add(opened);
    disturb(sandbox);
    constexpr size_t mostDatasets = 20;
    for (uint32_t length = sandbox.NextDataset(); length != 0 && paths.size() < mostDatasets;
         length = sandbox.NextDataset())
    {
        add(length);
        paths.push_back(sandbox.Text(sandbox.DatasetPath(), longestHdfPath));
        if (const HdfSandbox::Address candidate = sandbox.ExamineDataset())
            addBytes(sandbox.Bytes(candidate, sizeof(HdfCandidate)));
    }
    disturb(sandbox);
    for (const std::string& path : paths)
    {
        PassPath(sandbox, path);
        add(sandbox.StoredBytes());
        if (const HdfSandbox::Address text = sandbox.ReadString())
            add(sandbox.Text(text, sandbox.Memory().size()).size());
        for (const bool isWhole : {true, false})
        {
            const int64_t count =
                isWhole ? sandbox.BeginDataset(static_cast<uint32_t>(PixelType::Float32))
                        : sandbox.BeginSeriesFrame(static_cast<uint32_t>(PixelType::UInt16), 16, 16, 0);
            add(static_cast<uint64_t>(count));
            for (int32_t bytes = count < 0 ? 0 : sandbox.ReadBand(); bytes > 0; bytes = sandbox.ReadBand())
                addBytes(sandbox.Bytes(sandbox.Band(), static_cast<uint32_t>(bytes)));
        }
    }
    return sum;
}

/// Spoils some places of the linear memory: a bit, a byte, or a number that may be an address or a function.
void Spoil(HdfSandbox& sandbox, std::mt19937& random)
{
    const std::span<uint8_t> memory = sandbox.Memory();
    for (uint32_t places = 1U << random() % 12; places > 0; --places)
    {
        const size_t place = random() % (memory.size() - 4) & ~size_t{3};
        uint32_t number = random() % 2 ? random() % static_cast<uint32_t>(memory.size()) : random() % 2000;
        switch (random() % 3)
        {
        case 0:
            memory[place + random() % 4] ^= static_cast<uint8_t>(1U << random() % 8);
            break;
        case 1:
            memory[place + random() % 4] = static_cast<uint8_t>(random());
            break;
        default:
            for (size_t i = 0; i < 4; ++i, number >>= 8)
                memory[place + i] = static_cast<uint8_t>(number);
        }
    }
}

TEST(Sandbox, GivesTheSameWhateverHasBeenRead)
{
    HdfSandbox first{enoughMemory, enoughSteps};
    const uint64_t expected = SumOfAll(first, VariedFile());
    HdfSandbox second{enoughMemory, enoughSteps};
    EXPECT_EQ(SumOfAll(second, VariedFile()), expected);
    EXPECT_EQ(second.StepsLeft(), first.StepsLeft());
}

TEST(SandboxCorruption, EndsInTheSandbox)
{
#ifdef _WIN32
    constexpr int rounds = 1000;
#else
    constexpr int rounds = 3000;
#endif
    std::mt19937 random{RandomSeed()};
    int traps = 0;
    for (int round = 0; round < rounds; ++round)
    {
        HdfSandbox sandbox{enoughMemory, enoughSteps / 10};
        try
        {
            SumOfAll(sandbox, VariedFile(), [&random](HdfSandbox& opened) { Spoil(opened, random); });
        }
        catch (const HdfTrap&)
        {
            ++traps;
        }
        ASSERT_LE(sandbox.Memory().size(), enoughMemory + 0x10000);
    }
    EXPECT_GT(traps, rounds / 10) << "the damage must hit something";
}

TEST(Sandbox, ServesManyThreadsWithAnInstanceEach)
{
    HdfSandbox alone{enoughMemory, enoughSteps};
    const uint64_t expected = SumOfAll(alone, VariedFile());
    std::atomic<int> same = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
    {
        threads.emplace_back([&same, expected] {
            for (int round = 0; round < 5; ++round)
            {
                HdfSandbox sandbox{enoughMemory, enoughSteps};
                same += SumOfAll(sandbox, VariedFile()) == expected ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(same, 40);
}

TEST(Sandbox, MayBeCalledFromAnotherThreadThanBefore)
{
    HdfSandbox sandbox{enoughMemory, enoughSteps};
    const HdfSandbox::Address image = PutFile(sandbox, VariedFile());
    RunOnSmallStack(
        0x40000, [&] { EXPECT_EQ(sandbox.OpenFile(image, static_cast<uint32_t>(VariedFile().size())), 0); });
    EXPECT_NE(sandbox.NextDataset(), 0U);
}

TEST(Sandbox, EndsWhenItsStepsAreUsedUp)
{
    HdfSandbox whole{enoughMemory, enoughSteps};
    SumOfAll(whole, VariedFile());
    const int64_t needed = enoughSteps - whole.StepsLeft();
    // Starting takes some; from there to one too few, every number ends the sandbox.
    for (const int64_t steps : {needed / 3, needed / 2, needed - 1})
    {
        HdfSandbox sandbox{enoughMemory, steps};
        EXPECT_THROW(SumOfAll(sandbox, VariedFile()), HdfTrap) << steps;
    }
    HdfSandbox sandbox{enoughMemory, needed};
    EXPECT_NO_THROW(SumOfAll(sandbox, VariedFile()));
    EXPECT_EQ(sandbox.StepsLeft(), 0);
}

TEST(Sandbox, GetsNoMoreMemoryThanItIsAllowed)
{
    HdfSandbox sandbox{enoughMemory, enoughSteps};
    EXPECT_EQ(sandbox.Allocate(0x4000000), 0U);
    EXPECT_NE(sandbox.Allocate(0x3000000), 0U);
    EXPECT_LE(sandbox.Memory().size(), enoughMemory + 0x10000);
    EXPECT_THROW((HdfSandbox{uint64_t{1} << 32, enoughSteps}), std::bad_alloc);
}

TEST(Sandbox, LetsNothingBeCopiedFromBeyondItsMemory)
{
    HdfSandbox sandbox{enoughMemory, enoughSteps};
    const auto size = static_cast<uint32_t>(sandbox.Memory().size());
    EXPECT_EQ(sandbox.Bytes(size, 0).size(), 0U);
    EXPECT_EQ(sandbox.Bytes(size - 1, 1).size(), 1U);
    EXPECT_THROW(static_cast<void>(sandbox.Bytes(size - 1, 2)), HdfTrap);
    EXPECT_THROW(static_cast<void>(sandbox.Bytes(size + 1, 0)), HdfTrap);
    EXPECT_THROW(static_cast<void>(sandbox.Bytes(0xFFFFFFFF, 1)), HdfTrap);
    EXPECT_THROW(static_cast<void>(sandbox.Bytes(1, UINT64_MAX)), HdfTrap);

    sandbox.Memory()[size - 3] = 'a';
    sandbox.Memory()[size - 2] = 'b';
    sandbox.Memory()[size - 1] = 0;
    EXPECT_EQ(sandbox.Text(size - 3, 2), "ab");
    EXPECT_THROW(static_cast<void>(sandbox.Text(size - 3, 1)), HdfTrap);
    sandbox.Memory()[size - 1] = 'c';
    EXPECT_THROW(static_cast<void>(sandbox.Text(size - 3, 1000)), HdfTrap);
    EXPECT_THROW(static_cast<void>(sandbox.Text(0xFFFFFFFF, 1000)), HdfTrap);
}

/// Throws in the middle of a read, as a host's own stream may.
class ThrowingStream : public TestStream
{
public:
    using TestStream::TestStream;

    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG, ULONG*) override
    {
        *static_cast<uint8_t*>(buffer) = bytes[0];
        throw std::runtime_error{"the host's own"};
    }
};

TEST(HdfContents, LetsTheExceptionOfAStreamPass)
{
    ThrowingStream stream{VariedFile()};
    HdfContents contents{&stream, VariedFile().size()};
    EXPECT_THROW(static_cast<void>(contents.Open()), std::runtime_error);
}

} // namespace
