#include "formats/RawImageNpy.h"
#include "support/files/NpyFile.h"
#include "support/streams/DamagedFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Three frames of 8 x 8 bytes behind a header of 80 bytes: 282 bytes. Bytes are shown without a histogram of
/// all possible samples, so that very many files can be opened.
Bytes StackFile()
{
    Bytes samples(3 * 64);
    std::iota(samples.begin(), samples.end(), uint8_t{0x35});
    return NpyFile().Descr("|i1").Shape("(3, 8, 8)").HeaderLength(80).Samples(samples).Build();
}

/// A picture of 5 x 11 colours behind a header of 96 bytes: 271 bytes.
Bytes ColourFile()
{
    Bytes samples(165);
    std::iota(samples.begin(), samples.end(), uint8_t{0x35});
    return NpyFile().Descr("|u1").Shape("(11L, 5L, 3L)").HeaderLength(96).Samples(samples).Build();
}

TEST(DamagedNpyFile, OpensOrNotAtEveryLength)
{
    const Bytes whole = StackFile();
    ASSERT_EQ(whole.size(), 282U);
    for (size_t length = 0; length <= whole.size(); ++length)
    {
        const Bytes file = FirstBytes(whole, length);
        for (uint32_t frameIndex = 0; frameIndex < 3; ++frameIndex)
        {
            const bool frameIsThere = length >= 256 && length >= 90 + 64 * (frameIndex + 1);
            const Lines lines =
                length < 256 || frameIsThere ? Lines{} : Lines{"[Lumora] NPY: Invalid data size"};
            for (const uint32_t mode : {0U, 1U})
            {
                const FileOpen open{file, mode, frameIndex};
                EXPECT_EQ(open.succeeded, frameIsThere) << length;
                EXPECT_EQ(open.lines, lines) << length;
            }
            ExpectSaneOutcome(file, frameIndex, length);
        }
    }
}

TEST(DamagedNpyFile, IsRefusedSilentlyBefore256BytesWhateverItHolds)
{
    const auto file = NpyFile().Magic("other!").Version(7, 7).Dictionary("none").HeaderLength(300);
    for (size_t length = 0; length < 256; ++length)
    {
        const FileRead<RawImageNpy> read{FirstBytes(file.Build(), length)};
        EXPECT_FALSE(read.succeeded) << length;
        EXPECT_THAT(read.lines, IsEmpty()) << length;
    }
    EXPECT_THAT(FileRead<RawImageNpy>(FirstBytes(file.Build(), 256)).lines,
                ElementsAre("[Lumora] NPY: Invalid header"));
}

TEST(DamagedNpyFile, OpensOrNotWithAnyByteOfAStackChanged)
{
    ForEveryChangedByte(StackFile(), 90, [](const Bytes& file, size_t place) {
        ExpectSaneOutcome(file, 2, place);
        ExpectSaneRead<RawImageNpy>(file, 2, place);
    });
}

TEST(DamagedNpyFile, OpensOrNotWithAnyByteOfAColourPictureChanged)
{
    ForEveryChangedByte(ColourFile(), 106,
                        [](const Bytes& file, size_t place) { ExpectSaneOutcome(file, 0, place); });
}

TEST(DamagedNpyFile, OpensOrNotWithAnyPieceOfItsHeaderRepeatedOrLeftOut)
{
    const Bytes whole = StackFile();
    for (size_t first = 0; first < 90; ++first)
        for (size_t end = first + 1; end <= 90; ++end)
        {
            const auto from = whole.begin() + static_cast<ptrdiff_t>(first);
            const auto to = whole.begin() + static_cast<ptrdiff_t>(end);
            Bytes shorter(whole.begin(), from);
            shorter.insert(shorter.end(), to, whole.end());
            shorter.resize(whole.size());
            ExpectSaneRead<RawImageNpy>(shorter, 1, first);

            Bytes longer(whole.begin(), to);
            longer.insert(longer.end(), from, whole.end());
            ExpectSaneRead<RawImageNpy>(longer, 1, first);
        }
}

} // namespace
