#include "formats/RawImageEmi.h"
#include "support/FileFacts.h"
#include "support/display/FrameReader.h"
#include "support/display/VariedSamples.h"
#include "support/files/EmiFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using EmiRead = FileRead<RawImageEmi>;

namespace {

const std::string wrongType = "[Lumora] EMI: Unsupported pixel type";
const std::string signedBytes = wrongType + " -> Int8 (CharArrayType_2D)";
const std::string doubles = wrongType + " -> Double64 (DoubleArrayType_2D)";
const std::string noImages = "[Lumora] EMI: No images found";

struct TypeRow
{
    uint16_t type;
    uint32_t sampleBytes;
    PixelType pixelType;
    /// Samples of a frame of 5 x 2 pixels.
    Bytes samples;
};

/// The samples of every row are a start and, in this order, 0, 50, 100, 150, 200, 205, 215, 225, 235 and 255
/// steps more. Fractions are quantised to 65535 steps, 257 to each, and come out the same.
const TypeRow arrayTypes[] = {
    {0x2202, 1, PixelType::UInt8, {0, 50, 100, 150, 200, 205, 215, 225, 235, 255}},
    {0x2204, 2, PixelType::Int16, Stored<int16_t>({-100, -50, 0, 50, 100, 105, 115, 125, 135, 155})},
    {0x2206, 2, PixelType::UInt16,
     Stored<uint16_t>({65000, 65050, 65100, 65150, 65200, 65205, 65215, 65225, 65235, 65255})},
    {0x2208, 4, PixelType::Int32,
     Stored<int32_t>({-70000, -69950, -69900, -69850, -69800, -69795, -69785, -69775, -69765, -69745})},
    {0x220A, 4, PixelType::UInt32,
     Stored<uint32_t>({70000, 70050, 70100, 70150, 70200, 70205, 70215, 70225, 70235, 70255})},
    {0x220C, 4, PixelType::Float32, Stored<float>({0, 50, 100, 150, 200, 205, 215, 225, 235, 255})},
    // Magnitudes: 30 and 40 give 50, 141 and 188 give 235.
    {0x2214, 8, PixelType::Complex64,
     Stored<float>({0, 0, 30, 40, -100, 0, 0, -150, 0, 200, -205, 0, 215, 0, 0, 225, 141, -188, 255, 0})},
};

const Bytes lastRowFirst = {205, 215, 225, 235, 255, 0, 50, 100, 150, 200};

TEST(EmiReader, ShowsEverySupportedTypeWithTheLastStoredRowAtTheTop)
{
    for (const TypeRow& row : arrayTypes)
    {
        const EmiRead read{EmiFile().Array(row.type, 5, 2, row.samples).Build()};
        EXPECT_TRUE(read.succeeded) << row.type;
        EXPECT_EQ(read.reader.pixelType, row.pixelType) << row.type;
        EXPECT_TRUE(read.reader.flipVertical) << row.type;
        EXPECT_EQ(read.reader.displayPixels, lastRowFirst) << row.type;
        EXPECT_THAT(read.lines, IsEmpty()) << row.type;
    }
}

TEST(EmiReader, ShowsEverySupportedTypeAsTheReferenceDoes)
{
    constexpr uint16_t sizes[][2] = {{7, 5}, {3, 3}, {1, 9}, {9, 1}, {64, 48}};
    for (const TypeRow& row : arrayTypes)
        for (const auto& [width, height] : sizes)
        {
            const StoredFrame frame = {.pixelType = row.pixelType,
                                       .width = width,
                                       .height = height,
                                       .bytes = VariedSamples(row.pixelType, size_t{width} * height),
                                       .flipVertical = true,
                                       .fileType = FileType::Emi};
            const DisplayedFrame expected = ReferenceDisplay(frame);
            const EmiRead read{EmiFile().Array(row.type, width, height, frame.bytes).Build()};

            EXPECT_TRUE(read.succeeded) << row.type << ", " << width << " x " << height;
            EXPECT_EQ(read.reader.displayPixels, expected.pixels)
                << row.type << ", " << width << " x " << height;
            EXPECT_EQ(read.lines, expected.lines) << row.type << ", " << width << " x " << height;
        }
}

/// What becomes of an array: its pixel type when it is supported, else the line that refuses it, if any.
struct Outcome
{
    PixelType pixelType = PixelType::Unknown;
    Lines lines = {};
};

Outcome OutcomeOf(uint16_t type, uint32_t sampleBytes)
{
    for (const TypeRow& row : arrayTypes)
        if (row.type == type && row.sampleBytes == sampleBytes)
            return {row.pixelType, {}};
    if (sampleBytes == 0 || sampleBytes > 8)
        return {};
    if (type == 0x2200 && sampleBytes == 1)
        return {PixelType::Unknown, {signedBytes}};
    if (type == 0x220E && sampleBytes == 8)
        return {PixelType::Unknown, {doubles}};
    return {PixelType::Unknown, {wrongType}};
}

TEST(EmiReader, JudgesEveryTypeTogetherWithTheSizeOfItsSamples)
{
    for (uint16_t type = 0x2200; type <= 0x2214; type = static_cast<uint16_t>(type + 2))
        for (uint32_t sampleBytes = 0; sampleBytes <= 20; ++sampleBytes)
        {
            const Outcome outcome = OutcomeOf(type, sampleBytes);
            const bool supported = outcome.pixelType != PixelType::Unknown;
            const auto file = EmiFile().Array(type, 4, 4, Bytes(16 * sampleBytes, 1));

            // Whatever becomes of the array, the walk goes on behind it.
            const EmiRead followed{EmiFile{file}.Bytes(9, 1, nine).Build(), 1, supported ? 1U : 0U};
            EXPECT_TRUE(followed.succeeded) << type << " of " << sampleBytes;
            EXPECT_EQ(followed.reader.frameCount, supported ? 2U : 1U) << type << " of " << sampleBytes;
            EXPECT_EQ(followed.reader.displayPixels, nine) << type << " of " << sampleBytes;
            EXPECT_EQ(followed.lines, outcome.lines) << type << " of " << sampleBytes;

            const EmiRead alone{file.Build(), 0};
            EXPECT_EQ(alone.succeeded, supported) << type << " of " << sampleBytes;
            EXPECT_EQ(alone.reader.pixelType, outcome.pixelType) << type << " of " << sampleBytes;
            Lines lines = outcome.lines;
            if (!supported)
                lines.push_back(noImages);
            EXPECT_EQ(alone.lines, lines) << type << " of " << sampleBytes;
        }
}

TEST(EmiReader, TakesNoComplexNumbersOfDoublePrecision)
{
    const EmiRead complex{EmiFile().Array(0x2212, 4, 4, Bytes(16 * 16)).Build(), 0};
    EXPECT_FALSE(complex.succeeded);
    EXPECT_THAT(complex.lines, ElementsAre("[Lumora] EMI: No images found"));
    // The same type with samples of another size, and the type before it.
    const EmiRead narrow{EmiFile().Array(0x2212, 4, 4, Bytes(16 * 8)).Build(), 0};
    EXPECT_THAT(narrow.lines,
                ElementsAre("[Lumora] EMI: Unsupported pixel type", "[Lumora] EMI: No images found"));
    const EmiRead unknown{EmiFile().Array(0x2210, 4, 4, Bytes(16)).Build(), 0};
    EXPECT_THAT(unknown.lines,
                ElementsAre("[Lumora] EMI: Unsupported pixel type", "[Lumora] EMI: No images found"));
}

TEST(EmiReader, RefusesEachArrayForItself)
{
    const auto file = EmiFile()
                          .Array(0x220E, 4, 4, Bytes(128))
                          .Array(0x2206, 5, 2, arrayTypes[2].samples)
                          .Array(0x2200, 4, 4, Bytes(16))
                          .Array(0x2206, 4, 4, Bytes(64))
                          .Array(0x2212, 4, 4, Bytes(256));
    const EmiRead read{file.Build()};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.frameCount, 1U);
    EXPECT_EQ(read.reader.pixelType, PixelType::UInt16);
    EXPECT_EQ(read.reader.displayPixels, lastRowFirst);
    EXPECT_THAT(read.lines, ElementsAre(doubles, signedBytes, wrongType));
}

struct SmallRow
{
    const char* what;
    uint16_t type;
    uint16_t width;
    uint16_t height;
    size_t sampleBytes;
    Lines lines;
};

TEST(EmiReader, MisjudgesImagesOfUpToEightPixels)
{
    // The eight bytes of the size count as samples, which nine pixels absorb.
    const SmallRow rows[] = {
        {"3 bytes a sample", 0x2202, 2, 2, 1, {wrongType, noImages}},
        {"2 bytes a sample", 0x2202, 4, 2, 1, {wrongType, noImages}},
        {"5 bytes a sample", 0x2202, 2, 1, 1, {wrongType, noImages}},
        {"9 bytes a sample", 0x2202, 1, 1, 1, {noImages}},
        {"3 bytes for 2", 0x2206, 8, 1, 2, {wrongType, noImages}},
        {"4 bytes for 2", 0x2206, 2, 2, 2, {wrongType, noImages}},
        {"10 bytes for 2", 0x2206, 1, 1, 2, {noImages}},
        {"5 bytes for 4", 0x220C, 8, 1, 4, {wrongType, noImages}},
        {"8 bytes for 4", 0x220C, 2, 1, 4, {wrongType, noImages}},
        {"12 bytes for 4", 0x220C, 1, 1, 4, {noImages}},
        // More than the eight that are ever looked at.
        {"9 bytes for 8", 0x2214, 8, 1, 8, {noImages}},
        {"8 bytes of doubles seem 9", 0x220E, 8, 1, 8, {noImages}},
        {"a byte seems to have 2", 0x2200, 8, 1, 1, {wrongType, noImages}},
        // Nine are enough for every type.
        {"9 bytes", 0x2202, 3, 3, 1, {}},
        {"9 pairs", 0x2206, 9, 1, 2, {}},
        {"9 complex numbers", 0x2214, 1, 9, 8, {}},
        {"9 doubles", 0x220E, 9, 1, 8, {doubles, noImages}},
        {"9 signed bytes", 0x2200, 9, 1, 1, {signedBytes, noImages}},
    };
    for (const SmallRow& row : rows)
    {
        const size_t pixels = size_t{row.width} * row.height;
        const Bytes file =
            EmiFile().Array(row.type, row.width, row.height, Bytes(pixels * row.sampleBytes)).Build();
        const EmiRead read{file, 0};
        EXPECT_EQ(read.succeeded, row.lines.empty()) << row.what;
        EXPECT_EQ(read.reader.frameCount, row.lines.empty() ? 1U : 0U) << row.what;
        EXPECT_EQ(read.lines, row.lines) << row.what;
    }
}

TEST(EmiReader, MistakesBytesForPairsWhereTheLengthSaysSo)
{
    // Eight bytes and the eight of the size make two bytes for each of eight pixels.
    const auto file = EmiFile().Array(0x2206, 4, 2, Bytes(8));
    ExpectFactsWithoutFrame<RawImageEmi>(
        file.Build(), 0, cannotReadImage,
        HasFacts({FileType::Emi, PixelType::UInt16, 4, 2, 1, true, L"Pellox"}));

    // With more behind it there is something to show.
    const EmiRead followed{EmiFile{file}.Sized(0x2000, 1, Bytes(1)).Build(), 1};
    EXPECT_TRUE(followed.succeeded);
    EXPECT_EQ(followed.reader.displayPixels.size(), 8U);
}

TEST(EmiReader, ReadsNoSamplesForTheFactsOfAFile)
{
    // Twenty images of 5 MB, each longer than a window.
    constexpr uint16_t width = 2500;
    constexpr uint16_t height = 2000;
    constexpr size_t samples = size_t{width} * height;
    Bytes file = EmiFile().VersionText("4.3").Build();
    const Bytes start = EmiFile().Array(0x2202, width, height, {}, samples + 8).Build();
    file.reserve(file.size() + 20 * (start.size() + samples));
    for (int i = 0; i < 20; ++i)
    {
        file.insert(file.end(), start.begin() + 8, start.end());
        file.resize(file.size() + samples, 0x20);
    }
    const size_t fileBytes = file.size();

    const EmiRead read{std::move(file), 0, 19};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.frameCount, 20U);
    EXPECT_THAT(read.lines, IsEmpty());
    // One window for each image's header; the first one's holds the start of the file too.
    EXPECT_EQ(read.stream.readCalls, 20U);
    EXPECT_LE(read.stream.bytesRead, 20U * 0x400000U);
    EXPECT_LT(read.stream.bytesRead, fileBytes - 20 * 800000);
}

TEST(EmiReader, ReadsTheSamplesOfOneImageInOneGo)
{
    const Bytes file = EmiFile()
                           .Bytes(2000, 1000, Bytes(2000000))
                           .Bytes(100, 10, Bytes(1000))
                           .Bytes(1000, 1000, Bytes(1000000))
                           .Build();
    const EmiRead read{file, 1, 1};
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.reader.width, 100U);
    EXPECT_EQ(read.stream.readCalls, 2U);
    EXPECT_EQ(read.stream.bytesRead, file.size() + 1000);
}

} // namespace
