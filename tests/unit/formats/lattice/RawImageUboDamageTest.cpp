#include "formats/lattice/RawImageUbo.h"
#include "support/files/LatticeFile.h"
#include "support/streams/DamagedFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

using namespace Tav::Imaging::RawImage;

namespace {

/// Three slices of 4 x 3 bytes: lines that end at 12, 33, 58, 81 and 84, and 36 bytes of data.
Bytes SmallFile()
{
    Bytes samples(36);
    std::iota(samples.begin(), samples.end(), uint8_t{100});
    return LatticeFile().Size(4, 3, 3).Samples(samples).Build();
}

TEST(DamagedLatticeFile, OpensOrNotAtEveryLength)
{
    const Bytes whole = SmallFile();
    ASSERT_EQ(whole.size(), 120U);
    constexpr size_t slices[] = {1, 0, 1, 2};
    for (size_t length = 0; length <= whole.size(); ++length)
        for (const uint32_t frameIndex : {0U, 3U})
        {
            const Bytes file = FirstBytes(whole, length);
            // With the type line the header is understood; the data are at the file's start until "@1" ends.
            const size_t dataStart = length < 84 ? 0 : 84;
            const bool frameIsThere = length >= 58 && length >= dataStart + 12 * (slices[frameIndex] + 1);

            const FileRead<RawImageUbo> header{file, 0, frameIndex};
            EXPECT_EQ(header.succeeded, length >= 58) << length;
            EXPECT_EQ(header.lines, length >= 58 ? Lines{} : Lines{"[Lumora] UBO: Unsupported header format"})
                << length;

            const FileRead<RawImageUbo> frame{file, 1, frameIndex};
            EXPECT_EQ(frame.succeeded, frameIsThere) << length;
            if (length >= 58)
            {
                EXPECT_EQ(frame.lines, frameIsThere ? Lines{} : Lines{cannotReadImage}) << length;
            }
            ExpectSaneOutcome(file, frameIndex, length);
        }
}

TEST(DamagedLatticeFile, OpensOrNotWithAnyByteOfItsHeaderChanged)
{
    // The characters that mean something to the header, and bytes that do not.
    const Bytes values = {0x00, 0xFF, ' ', '\n', '{', '}', '@', '1', '9', 'e'};
    const Bytes whole = SmallFile();
    for (size_t place = 0; place < 84; ++place)
        for (const uint8_t value : values)
        {
            Bytes file = whole;
            file[place] = value;
            ExpectSaneRead<RawImageUbo>(file, 3, place);
        }
}

} // namespace
