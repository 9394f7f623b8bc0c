#include "limits/Limits.h"

#include "core/RawImageBase.h"
#include "formats/Identification.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <span>
#include <sstream>

using namespace Tav::Imaging::RawImage;

namespace {

constexpr int64_t mebibyte = 1 << 20;
constexpr size_t kibibyte = 1 << 10;

/// How many steps a file may cause: some for any file, and some for each of its bytes.
struct WorkLimit
{
    uint64_t forAnyFile;
    double perByte;
};

constexpr size_t stackBytes = 64 * kibibyte;
/// The sandbox may use 192 KiB of it.
constexpr size_t hdfStackBytes = 256 * kibibyte;

/// The limits of one format, and the most that its files have cost so far.
struct Format
{
    Identity identity;
    const char* name;
    WorkLimit header;
    WorkLimit frame;
    size_t stackBytes;

    uint64_t files = 0;
    int64_t mostMemory = 0;
    size_t bytesOfThatFile = 0;
    double mostHeaderSteps = 0;
    double mostFrameSteps = 0;
    size_t mostStack = 0;
};

constexpr WorkLimit header = {1'000, 5};
// The counts of 16-bit codes take the same time for every frame.
constexpr WorkLimit frame = {1'000'000, 6};

// The sandbox may use two budgets of 20 million steps, to find the datasets and to read one. What is outside
// it takes some more.
constexpr WorkLimit budgets = {42'000'000, 150};

Format formats[] = {
    {Identity::Mrc, "MRC", header, frame, stackBytes},
    {Identity::Dm3, "Digital Micrograph", header, frame, stackBytes},
    {Identity::Ser, "SER", header, frame, stackBytes},
    {Identity::Emi, "EMI", header, frame, stackBytes},
    {Identity::Npy, "NPY", header, frame, stackBytes},
    {Identity::Raw, "RAW", header, frame, stackBytes},
    {Identity::Bin, "BIN", header, frame, stackBytes},
    {Identity::Lattice, "Lattice", {1'000, 25}, {1'000'000, 25}, stackBytes},
    {Identity::Hdf, "HDF5", budgets, budgets, hdfStackBytes},
    {Identity::Unknown, "not read", header, header, stackBytes},
};

Format& FormatOf(const Bytes& file)
{
    Identity identity = Identity::Unknown;
    if (file.size() >= identificationBytes)
        identity = Identify(std::span<const uint8_t, identificationBytes>{file.data(), identificationBytes});
    // Both versions have one reader.
    if (identity == Identity::Dm4)
        identity = Identity::Dm3;
    Format* const found = std::ranges::find(formats, identity, &Format::identity);
    return found != std::end(formats) ? *found
                                      : *std::ranges::find(formats, Identity::Unknown, &Format::identity);
}

/// The steps beyond those of any file, for each byte.
double StepsPerByte(const WorkLimit& limit, uint64_t steps, size_t bytes)
{
    const uint64_t more = steps - std::min(steps, limit.forAnyFile);
    return static_cast<double>(more) / static_cast<double>(std::max<size_t>(bytes, 1));
}

void ExpectWithin(const WorkLimit& limit, const MeasuredOpen& open, size_t fileBytes, double& most)
{
    const double steps = StepsPerByte(limit, open.steps, fileBytes);
    EXPECT_LE(steps, limit.perByte) << open.steps;
    most = std::max(most, steps);
}

void ExpectSmall(Format& format, const MeasuredOpen& open, size_t fileBytes)
{
    EXPECT_LE(open.memory,
              memoryForAnyFile + memoryPerByte * static_cast<int64_t>(fileBytes) + open.frameBytes);
    EXPECT_LE(open.stack, format.stackBytes);
    if (open.memory > format.mostMemory)
    {
        format.mostMemory = open.memory;
        format.bytesOfThatFile = fileBytes;
    }
    format.mostStack = std::max(format.mostStack, open.stack);
}

} // namespace

FileCost ExpectWithinLimits(const Bytes& file, const std::string& what)
{
    SCOPED_TRACE(what);
    Format& format = FormatOf(file);
    ++format.files;
    const FileCost cost = {MeasuredOpen{file, readModeHeader}, MeasuredOpen{file, readModeFrame}};
    ExpectSmall(format, cost.header, file.size());
    ExpectWithin(format.header, cost.header, file.size(), format.mostHeaderSteps);
    ExpectSmall(format, cost.frame, file.size());
    ExpectWithin(format.frame, cost.frame, file.size(), format.mostFrameSteps);
    const uint32_t frameCount = cost.header.frameCount.value_or(0);
    if (frameCount > 1)
    {
        const MeasuredOpen last{file, readModeFrame, frameCount - 1};
        ExpectSmall(format, last, file.size());
        ExpectWithin(format.frame, last, file.size(), format.mostFrameSteps);
    }
    return cost;
}

std::string LimitTable()
{
    const auto mebibytes = [](auto bytes) {
        return static_cast<double>(bytes) / static_cast<double>(mebibyte);
    };
    std::ostringstream table;
    table << std::fixed << std::setprecision(1);
    table << "| Format | Files | Memory | of a file of | Steps per byte, header | Steps per byte, frame | "
             "Stack |\n"
             "|---|---|---|---|---|---|---|\n";
    for (const Format& format : formats)
    {
        if (format.files > 0)
            table << "| " << format.name << " | " << format.files << " | " << mebibytes(format.mostMemory)
                  << " MiB | " << mebibytes(format.bytesOfThatFile) << " MiB | " << format.mostHeaderSteps
                  << " | " << format.mostFrameSteps << " | " << (format.mostStack + kibibyte - 1) / kibibyte
                  << " KiB |\n";
    }
    return table.str();
}
