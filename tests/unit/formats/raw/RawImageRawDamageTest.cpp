#include "formats/RawImageRaw.h"
#include "support/files/RawFile.h"
#include "support/streams/DamagedFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::IsEmpty;

using RawRead = FileRead<RawImageRaw>;

namespace {

const std::string wrongIndex = "[Lumora] RAW: Invalid frame index";
const std::string notWholeBytes = "[Lumora] RAW: Invalid pixel type (not a multiple of 8-bits)";
const std::string correctedBits = "[Lumora] RAW: The bits per pixel in the file header is not correct";
const std::string wrongType = "[Lumora] RAW: Unsupported pixel type";

constexpr size_t heightEnd = 25;
constexpr size_t unusedEnd = 29;
constexpr size_t bitsEnd = 33;

RawFile Bytes4x4()
{
    return RawFile().Size(4, 4).Samples(8, RawFile::Unsigned, Bytes(16, 1));
}

TEST(DamagedRawFile, OpensOrNotAtEveryLength)
{
    const Bytes whole = Bytes4x4().Build();
    ASSERT_EQ(whole.size(), 65U);
    for (size_t length = 0; length <= whole.size(); ++length)
    {
        const Bytes file = FirstBytes(whole, length);
        const RawRead header{file, 0};
        EXPECT_EQ(header.succeeded, length >= RawFile::headerBytes) << length;
        EXPECT_THAT(header.lines, IsEmpty()) << length;

        const RawRead frame{file, 1};
        EXPECT_EQ(frame.succeeded, length == whole.size()) << length;
        const bool cutInSamples = length >= RawFile::headerBytes && length < whole.size();
        EXPECT_EQ(frame.lines, cutInSamples ? Lines{cannotReadImage} : Lines{}) << length;
        ExpectSaneOutcome(file, 0, length);
    }
}

TEST(DamagedRawFile, TellsOfItsBitsAsSoonAsTheyAreRead)
{
    const Bytes whole = Bytes4x4().Gap(112).BitsPerPixel(12).Build();
    for (size_t length = 0; length <= whole.size(); ++length)
    {
        const RawRead header{FirstBytes(whole, length), 0};
        const bool fits = length == 49 + 16 || length == 49 + 32 || length == 49 + 64 || length == 49 + 128;
        Lines lines;
        if (length >= bitsEnd)
            lines.push_back(fits ? correctedBits : notWholeBytes);
        // There is no unsigned type of eight bytes.
        if (length == 49 + 128)
            lines.push_back(wrongType);
        EXPECT_EQ(header.lines, lines) << length;
        EXPECT_EQ(header.succeeded, fits && length != 49 + 128) << length;
    }
}

TEST(DamagedRawFile, TellsOfTheIndexOnceTheSizeIsKnown)
{
    const Bytes whole = Bytes4x4().Build();
    for (size_t length = 0; length <= whole.size(); ++length)
    {
        // Whether a file that ends within the unused word has a size matters to nobody.
        if (length >= heightEnd && length < unusedEnd)
            continue;
        const RawRead read{FirstBytes(whole, length), 0, 1};
        EXPECT_FALSE(read.succeeded) << length;
        EXPECT_EQ(read.lines, length < heightEnd ? Lines{} : Lines{wrongIndex}) << length;
    }
}

TEST(DamagedRawFile, TellsOfItsTypeOnlyWhenTheHeaderIsComplete)
{
    const Bytes whole = Bytes4x4().Samples(8, 4, Bytes(16)).Build();
    for (size_t length = 0; length <= whole.size(); ++length)
    {
        const RawRead read{FirstBytes(whole, length), 0};
        EXPECT_FALSE(read.succeeded) << length;
        EXPECT_EQ(read.lines, length < RawFile::headerBytes ? Lines{} : Lines{wrongType}) << length;
    }
}

TEST(DamagedRawFile, IsReadOrNotWithAnyByteChanged)
{
    const RawFile files[] = {
        Bytes4x4(),
        Bytes4x4().BitsPerPixel(12),
        Bytes4x4().Strides(4, 1),
        RawFile().Size(2, 2).Samples(24, RawFile::Colours, Bytes(20, 3)).Strides(3, 7).Gap(2),
    };
    for (const RawFile& file : files)
        ForEveryChangedByte(file.Build(), RawFile::headerBytes, [](const Bytes& changed, size_t place) {
            ExpectSaneRead<RawImageRaw>(changed, 0, place);
            ExpectSaneOutcome(changed, 0, place);
        });
}

} // namespace
