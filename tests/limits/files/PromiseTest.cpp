#include "limits/Limits.h"
#include "limits/growth/GrowthCases.h"
#include "support/JpegFile.h"
#include "support/files/BinFile.h"
#include "support/files/DmFile.h"
#include "support/files/EmiFile.h"
#include "support/files/Hdf5File.h"
#include "support/files/LatticeFile.h"
#include "support/files/MrcFile.h"
#include "support/files/NpyFile.h"
#include "support/files/RawFile.h"
#include "support/files/SerFile.h"

#include "core/RawImageBase.h"
#include "formats/Identification.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using namespace Tav::Imaging::RawImage;

// Small files whose headers promise as much as the fields can hold.

namespace {

constexpr uint32_t most = 0xFFFFFFFF;
constexpr uint16_t longest = 0xFFFF;
constexpr uint16_t longestHdfSide = 8192;

// As many as identify a file.
const Bytes someBytes = VariedBytes(identificationBytes);

void ExpectCheap(const Bytes& file, const std::string& what)
{
    EXPECT_GE(file.size(), identificationBytes) << what;
    ExpectWithinLimits(file, what);
}

TEST(Promise, OfPixelsCostsNothing)
{
    ExpectCheap(MrcFile().Size(longest, longest, 0xFFFFFF).Mode(2).Build(), "MRC");
    ExpectCheap(SerFile().Element({10, longest, longest}).Build(), "SER");
    ExpectCheap(EmiFile().Array(0x2214, longest, longest, someBytes, most).Build(), "EMI");
    ExpectCheap(NpyFile().Descr("<c16").Shape("(4096, 65535, 65535)").Build(), "NPY");
    ExpectCheap(RawFile().Size(longest, longest).Samples(64, RawFile::FloatingPoint, someBytes).Build(),
                "RAW");
    ExpectCheap(RawFile()
                    .Size(longest, longest)
                    .Strides(most, most)
                    .Samples(64, RawFile::FloatingPoint, someBytes)
                    .Build(),
                "strides");
    ExpectCheap(BinFile().Size(longest, longest).Samples(7, someBytes).Build(), "BIN");
    ExpectCheap(LatticeFile().Size(longest, longest, longest).Type("double").Build(), "Lattice");
    for (const uint32_t version : {3U, 4U})
    {
        const DmLayout layout{.version = version};
        DmTags tags{layout};
        tags.Image({.dataType = 2,
                    .width = longest,
                    .height = longest,
                    .depth = most,
                    .elementType = DmType::none,
                    .elementCount = most});
        ExpectCheap(DmFile{layout}.Root(tags).Build(), "Digital Micrograph");
    }
}

TEST(Promise, OfEntriesCostsNothing)
{
    ExpectCheap(MrcFile().ClaimExtendedBytes(most).Build(), "MRC");
    ExpectCheap(SerFile().ValidCount(most).TotalCount(most).Element(10, 10, someBytes).Build(), "SER");
    ExpectCheap(EmiFile().Sized(EmiFile::sizedText, EmiFile::versionIdentifier, someBytes, most).Build(),
                "EMI");
    ExpectCheap(NpyFile().HeaderLength(longest).Build(), "NPY");
    for (const uint32_t version : {3U, 4U})
    {
        const DmLayout layout{.version = version};
        const DmTags empty{layout};
        DmTags tags{layout};
        tags.Struct("first", {DmType::byte}, someBytes);
        ExpectCheap(DmFile{layout}.Root(DmTags{tags}.Group("g", empty).ClaimCount(most)).Build(), "tags");
        const DmWriter fields = DmWriter{layout}.Word(0).Word(most);
        ExpectCheap(DmFile{layout}.Root(DmTags{tags}.Data("s", DmType::structure, fields, {})).Build(),
                    "fields");
    }
}

/// Replaces a number of 4 bytes everywhere, and so the lower half of one of 8 bytes.
void Replace(Bytes& file, uint32_t number, uint32_t other)
{
    const Bytes before = ByteWriter().Put(number).bytes;
    const Bytes after = ByteWriter().Put(other).bytes;
    auto place = std::search(file.begin(), file.end(), before.begin(), before.end());
    EXPECT_NE(place, file.end());
    for (; place != file.end(); place = std::search(place, file.end(), before.begin(), before.end()))
        std::ranges::copy(after, place);
}

// The library tells how large a dataset is before it reads it, and the memory is reserved then.
TEST(Promise, OfAnHdfFrameCostsAtMostTheLargestFrame)
{
    constexpr uint32_t sampleBytes = 4;
    constexpr uint32_t frameBytes = longestHdfSide * longestHdfSide * sampleBytes;
    Bytes file = Hdf5File().AnyDataSet("/image", H5T_STD_U32LE, {61, 67}, {.chunk = {61, 67}}).Build();
    Replace(file, 61 * 67 * sampleBytes, frameBytes);
    Replace(file, 61, longestHdfSide);
    Replace(file, 67, longestHdfSide);
    EXPECT_TRUE((MeasuredOpen{file, readModeHeader}.frameCount));
    const MeasuredOpen frame{file, readModeFrame};
    EXPECT_FALSE(frame.frameCount);
    EXPECT_LE(frame.memory, memoryForAnyFile + frameBytes);
}

// A decoder shows gray for what a JPEG file does not hold, so a few bytes can make a picture of any size.
TEST(Promise, OfAThumbnailCostsAtMostTheLargestPicture)
{
    constexpr int64_t pictureBytes = int64_t{3} * longestHdfSide * longestHdfSide;
    const Bytes jpeg = JpegFile(longestHdfSide, longestHdfSide).Build();
    const Bytes file = Hdf5File()
                           .AnyDataSet("/image", H5T_STD_U16LE, {61, 67})
                           .DataSet("/Thumbnail.jpg", H5T_STD_U8LE, {jpeg.size()}, jpeg)
                           .Build();
    const MeasuredOpen header{file, readModeHeader};
    EXPECT_EQ(header.frameCount, 1U);
    EXPECT_LE(header.memory, memoryForAnyFile + pictureBytes);
}

} // namespace
