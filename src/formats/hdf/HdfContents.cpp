#include "formats/hdf/HdfContents.h"

#include "core/stream/StreamReader.h"
#include "formats/hdf/HdfLog.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

// The memory that the library may use. In addition to the file it needs little, but it unpacks a filtered
// chunk as a whole, and the chunk can be as large as the file.
constexpr uint64_t memoryForAnyFile = 0x5000000;
constexpr uint64_t memoryPerByte = 2;

// Examining a dataset takes some ten thousand steps, and unpacking a byte takes one to three. A hundred
// million steps take about a second.
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
constexpr int64_t stepsForAnyFile = 1'000'000;
#else
constexpr int64_t stepsForAnyFile = 20'000'000;
#endif
constexpr int64_t stepsPerByte = 32;
constexpr int64_t mostStepsForFile = 1'500'000'000;
constexpr int64_t stepsPerByteUnpacked = 4;

/// The budget of steps for finding the datasets, and again for reading one of them.
int64_t StepsFor(uint64_t fileBytes)
{
    const uint64_t bytes = std::min<uint64_t>(fileBytes, mostStepsForFile / stepsPerByte);
    return std::min(stepsForAnyFile + stepsPerByte * static_cast<int64_t>(bytes), mostStepsForFile);
}

/// How often the walk restarts after a dataset has ended the sandbox.
constexpr uint32_t mostRestarts = 16;

} // namespace

HdfContents::HdfContents(IStream* fileStream, uint64_t streamSize) noexcept
    : stream(fileStream), size(streamSize), steps(StepsFor(streamSize))
{}

template <typename Answer, typename Question>
Answer HdfContents::Ask(Answer otherwise, Question question)
{
    try
    {
        if (!sandbox)
        {
            MakeSandbox();
            if (!OpenFile())
                throw HdfTrap{};
        }
        return question();
    }
    catch (const HdfTrap&)
    {
        EndSandbox();
        return otherwise;
    }
}

void HdfContents::AddSteps(int64_t count) noexcept
{
    if (sandbox)
        sandbox->AddSteps(count);
    else
        steps = std::max<int64_t>(steps, 0) + count;
}

void HdfContents::EndSandbox() noexcept
{
    if (sandbox)
        steps = sandbox->StepsLeft();
    sandbox.reset();
}

void HdfContents::MakeSandbox()
{
    sandbox = std::make_unique<HdfSandbox>(size + memoryForAnyFile + memoryPerByte * size, steps);
    image = sandbox->Allocate(static_cast<uint32_t>(size));
    if (image == 0)
        throw std::bad_alloc();
}

bool HdfContents::OpenFile()
{
    const auto bytes = static_cast<uint32_t>(size);
    return ReadStreamAt(stream, 0, sandbox->Bytes(image, size).data(), bytes) &&
           sandbox->OpenFile(image, bytes) >= 0;
}

bool HdfContents::Open()
{
    if (size > std::numeric_limits<uint32_t>::max())
        return hdfLog.Fail(L"File is too large (>4GB)");
    try
    {
        MakeSandbox();
    }
    catch (const HdfTrap&)
    {
        return false;
    }
    catch (const std::bad_alloc&)
    {
        return hdfLog.Fail(L"Could not allocated enough memory");
    }
    return Ask(false, [this] { return OpenFile(); });
}

bool HdfContents::GoBackToDataset()
{
    if (sandbox)
        return true;
    if (restarts == mostRestarts)
        return false;
    ++restarts;
    const auto passOver = [this] {
        for (uint64_t i = 0; i < datasetsMet; ++i)
        {
            if (sandbox->NextDataset() == 0)
                return false;
        }
        return true;
    };
    return Ask(false, passOver);
}

bool HdfContents::GoToNextDataset()
{
    if (!GoBackToDataset())
        return false;
    ++datasetsMet;
    pathLength = Ask(0U, [this] { return sandbox->NextDataset(); });
    // The walk may have used all its steps. What it has found gets a new budget.
    if (pathLength == 0)
        AddSteps(StepsFor(size));
    return pathLength > 0;
}

std::optional<std::string> HdfContents::Path(uint32_t longest)
{
    if (!sandbox || pathLength > longest)
        return std::nullopt;
    return Ask(std::optional<std::string>{}, [this] {
        std::string path = sandbox->Text(sandbox->DatasetPath(), pathLength);
        if (path.size() != pathLength)
            throw HdfTrap{};
        return std::optional{std::move(path)};
    });
}

std::optional<HdfCandidate> HdfContents::Examine()
{
    if (!sandbox)
        return std::nullopt;
    return Ask(std::optional<HdfCandidate>{}, [this] {
        const HdfSandbox::Address place = sandbox->ExamineDataset();
        if (place == 0)
            return std::optional<HdfCandidate>{};
        HdfCandidate candidate;
        std::memcpy(&candidate, sandbox->Bytes(place, sizeof(candidate)).data(), sizeof(candidate));
        candidate.interlace[longestHdfText] = '\0';
        return std::optional{candidate};
    });
}

/// Writes the path to the place where the next call reads it.
void HdfContents::PassPath(const std::string& path)
{
    if (path.size() > longestHdfPath)
        throw HdfTrap{};
    std::memcpy(sandbox->Bytes(sandbox->Argument(), path.size() + 1).data(), path.c_str(), path.size() + 1);
}

uint64_t HdfContents::StoredBytes(const std::string& path)
{
    return Ask(uint64_t{0}, [&] {
        PassPath(path);
        return sandbox->StoredBytes();
    });
}

std::optional<std::string> HdfContents::ReadString(const std::string& path)
{
    return Ask(std::optional<std::string>{}, [&] {
        PassPath(path);
        const HdfSandbox::Address text = sandbox->ReadString();
        return text == 0 ? std::nullopt : std::optional{sandbox->Text(text, sandbox->Memory().size())};
    });
}

std::optional<std::vector<uint8_t>> HdfContents::ReadBytes(const std::string& path, uint64_t most)
{
    using Bytes = std::vector<uint8_t>;
    const uint64_t storedBytes = StoredBytes(path);
    if (storedBytes < 1 || storedBytes > most)
        return std::nullopt;
    return Ask(std::optional<Bytes>{}, [&]() -> std::optional<Bytes> {
        PassPath(path);
        const int64_t count = sandbox->BeginDataset(static_cast<uint32_t>(PixelType::UInt8));
        if (count < 1 || static_cast<uint64_t>(count) > most)
            return std::nullopt;
        Bytes bytes(static_cast<size_t>(count));
        return ReadBands(bytes) ? std::optional{std::move(bytes)} : std::nullopt;
    });
}

bool HdfContents::ReadDataset(const std::string& path, PixelType pixelType, std::span<uint8_t> samples)
{
    return Ask(false, [&] {
        PassPath(path);
        const int64_t count = sandbox->BeginDataset(static_cast<uint32_t>(pixelType));
        return count == static_cast<int64_t>(samples.size() / BytesPerPixel(pixelType)) && ReadBands(samples);
    });
}

bool HdfContents::ReadSeriesFrame(const HdfImageEntry& entry, std::span<uint8_t> samples)
{
    return Ask(false, [&] {
        PassPath(entry.path);
        const int64_t count = sandbox->BeginSeriesFrame(static_cast<uint32_t>(entry.pixelType), entry.height,
                                                        entry.width, entry.frameInSeries);
        return count > 0 && ReadBands(samples);
    });
}

/// Reads all samples of the dataset or frame for which reading has begun: no more and no less.
bool HdfContents::ReadBands(std::span<uint8_t> samples)
{
    sandbox->AddSteps(stepsPerByteUnpacked * static_cast<int64_t>(samples.size()));
    size_t done = 0;
    while (done < samples.size())
    {
        const int32_t count = sandbox->ReadBand();
        if (count <= 0 || static_cast<size_t>(count) > samples.size() - done)
            return false;
        const auto bytes = static_cast<size_t>(count);
        std::ranges::copy(sandbox->Bytes(sandbox->Band(), bytes),
                          samples.begin() + static_cast<ptrdiff_t>(done));
        done += bytes;
    }
    return true;
}

} // namespace Tav::Imaging::RawImage
