#include "support/files/MrcFile.h"
#include "support/streams/DamagedFile.h"

#include <gtest/gtest.h>

#include <numeric>
#include <set>

using namespace Tav::Imaging::RawImage;

namespace {

/// Two sections of 2 x 2 colours behind every kind of optional header content: 1176 bytes.
Bytes AcquiredFile()
{
    Bytes samples(24);
    std::iota(samples.begin(), samples.end(), uint8_t{0x70});
    return MrcFile()
        .Size(2, 2, 2)
        .Mode(16)
        .Version(20140)
        .Labels("SerialEM 4 bits packed")
        .ExtendedHeader("TAV1", AcquisitionHeader(7, "TAV Tomography", "5.21.0"))
        .Samples(samples)
        .Build();
}

/// Two byte-swapped sections of 4 x 2 samples packed to a byte for two.
Bytes PackedFile()
{
    return MrcFile()
        .Order(ByteOrder::BigEndian)
        .Size(2, 2, 2)
        .Mode(0)
        .Labels("SerialEM 4 bits packed")
        .ExtendedHeader("TAV1", AcquisitionHeader(1, "TAV Ardix", ""))
        .Samples({0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE})
        .Build();
}

TEST(DamagedMrcFile, OpensOrNotAtEveryLength)
{
    const Bytes whole = AcquiredFile();
    ASSERT_EQ(whole.size(), 1176U);
    for (size_t length = 0; length <= whole.size(); ++length)
    {
        const Bytes file = FirstBytes(whole, length);
        for (const uint32_t frameIndex : {0U, 1U})
        {
            // Each frame needs its 12 bytes, behind the extended header as soon as that leaves room for one.
            const size_t dataStart = length < 1024 + 128 + 12 ? 1024 : 1024 + 128;
            const bool frameIsThere = length >= dataStart + size_t{12} * (frameIndex + 1);
            // Before the data start the count of frames wraps to plenty.
            const bool headerIsEnough = (length >= 96 && length < 1024) || frameIsThere;
            EXPECT_EQ(FileOpen(file, 0, frameIndex).succeeded, headerIsEnough) << length;
            EXPECT_EQ(FileOpen(file, 1, frameIndex).succeeded, frameIsThere) << length;
            ExpectSaneOutcome(file, frameIndex, length);
        }
    }
}

/// Places of the words that mean something to the reader, the labels' text among them.
std::set<size_t> MeaningfulPlaces()
{
    constexpr size_t runs[][2] = {{0, 16}, {92, 96}, {104, 112}, {224, 246}, {1032, 1036}, {1076, 1108}};
    std::set<size_t> places;
    for (const auto& [first, end] : runs)
        for (size_t place = first; place < end; ++place)
            places.insert(place);
    return places;
}

void ExpectSaneOutcomeOfEveryChange(const Bytes& whole)
{
    Bytes everyValue(256);
    std::iota(everyValue.begin(), everyValue.end(), uint8_t{0});
    const Bytes someValues = {0x00, 0x01, 0x7F, 0x80, 0xFF};

    const std::set<size_t> meaningful = MeaningfulPlaces();
    for (size_t place = 0; place < 1024 + 128; ++place)
    {
        Bytes file = whole;
        for (const uint8_t value : meaningful.contains(place) ? everyValue : someValues)
        {
            file[place] = value;
            ExpectSaneOutcome(file, 1, place);
        }
    }
}

TEST(DamagedMrcFile, OpensOrNotWithAnyByteOfAnAcquiredFileChanged)
{
    ExpectSaneOutcomeOfEveryChange(AcquiredFile());
}

TEST(DamagedMrcFile, OpensOrNotWithAnyByteOfAPackedFileChanged)
{
    ExpectSaneOutcomeOfEveryChange(PackedFile());
}

} // namespace
