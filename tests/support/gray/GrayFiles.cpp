#include "support/gray/GrayFiles.h"

#include "support/files/BinFile.h"
#include "support/files/DmImages.h"
#include "support/files/EmiFile.h"
#include "support/files/Hdf5File.h"
#include "support/files/LatticeFile.h"
#include "support/files/NpyFile.h"
#include "support/files/RawFile.h"
#include "support/files/SerFile.h"
#include "support/gray/GrayStack.h"

#include <span>

namespace {

using Picture = Bytes;

/// Samples that show the picture: they run over 256 values.
Bytes Samples(std::span<const uint8_t> picture)
{
    ByteWriter samples;
    for (const uint8_t brightness : picture)
        samples.Put(static_cast<uint16_t>(300 + brightness));
    return std::move(samples.bytes);
}

Bytes SamplesOf(const std::vector<Picture>& pictures)
{
    ByteWriter samples;
    for (const Picture& picture : pictures)
        samples.Put(Samples(picture));
    return std::move(samples.bytes);
}

Picture BottomUp(const Picture& picture)
{
    Picture flipped;
    for (size_t row = picture.size() / 4; row-- > 0;)
        flipped.insert(flipped.end(), picture.begin() + static_cast<ptrdiff_t>(4 * row),
                       picture.begin() + static_cast<ptrdiff_t>(4 * row + 4));
    return flipped;
}

/// One picture that is high enough to fill a file of any format.
Picture HighPicture()
{
    Picture picture;
    for (const Picture& part : grayPictures)
        picture.insert(picture.end(), part.begin(), part.end());
    picture.insert(picture.end(), grayPictures[0].begin(), grayPictures[0].end());
    return picture;
}

Bytes DmGray(const DmLayout& layout)
{
    // The size of the array, four times the number of elements, is 16 in 32 bits.
    const DmImage image = {.dataType = 10,
                           .width = 4,
                           .height = 2,
                           .elementType = DmType::uint32,
                           .elementCount = 0x40000004,
                           .samples = Samples(grayPictures[0])};
    return DmFile{layout}.Root(DmTags{layout}.Image(Thumbnail(1)).Image(image)).Build();
}

Bytes SerGray()
{
    SerFile file;
    for (const Picture& picture : grayPictures)
        file.Element({2, 4, 2, Samples(BottomUp(picture))});
    return file.Build();
}

constexpr uint32_t hdfSide = 32;

/// The picture over and over, for the format that shows nothing smaller.
Picture Repeated(const Picture& picture)
{
    Picture repeated;
    while (repeated.size() < hdfSide * hdfSide)
        repeated.insert(repeated.end(), picture.begin(), picture.end());
    return repeated;
}

Bytes HdfGray(const std::vector<Picture>& pictures)
{
    // The number of the frame runs fastest.
    ByteWriter samples;
    for (size_t pixel = 0; pixel < hdfSide * hdfSide; ++pixel)
    {
        for (const Picture& picture : pictures)
            samples.Put(static_cast<uint16_t>(300 + picture[pixel]));
    }
    return Hdf5File()
        .DataSet("/Data/Image/1/Data", H5T_STD_U16LE, {hdfSide, hdfSide, pictures.size()}, samples.bytes)
        .Strings("/Version", {"\"format\": \"Frame\",\n\"version\": \"1.1\""})
        .Strings("/Info", {"\"applicationVersion\": \"2.10-rc1\""})
        .Build();
}

} // namespace

std::vector<GrayFile> GrayFiles()
{
    const std::vector<Picture> pictures(grayPictures.begin(), grayPictures.end());
    const Picture high = HighPicture();
    const std::vector<Picture> large = {Repeated(pictures[0]), Repeated(pictures[1]), Repeated(pictures[2])};
    return {
        {"gray.dm3", DmGray(DmLayout{3}), {pictures[0]}, L"Gatan Digital Micrograph", L""},
        {"gray.dm4", DmGray(DmLayout{4}), {pictures[0]}, L"Gatan Digital Micrograph", L""},
        {"gray.h5", HdfGray(large), large, L"Frame 2.10", L"Data version: Frame 1.1", hdfSide},
        {"gray.ser", SerGray(), pictures, L"Pellox", L""},
        {"gray.emi",
         EmiFile()
             .VersionText("4.3.0.123")
             .Fixed(52, 8)
             .Array(0x2206, 4, 8, Samples(BottomUp(high)))
             .Array(0x2206, 4, 8, Samples(high))
             .Build(),
         {high, BottomUp(high)},
         L"Pellox 4.3.0.123",
         L"Requires Pellox 4.15.0.2311 or later"},
        {"gray.npy", NpyFile().Descr("<u2").Shape("(3, 2, 4)").Samples(SamplesOf(pictures)).Build(), pictures,
         L"", L""},
        {"gray.raw",
         RawFile().Size(4, 8).Samples(16, RawFile::Unsigned, Samples(high)).Build(),
         {high},
         L"",
         L""},
        {"short.bin", BinFile().Size(4, 8).Samples(2, Samples(high)).Build(), {high}, L"", L""},
        {"gray.bin",
         BinFile().Size(4, 2).HeaderLength(64).Samples(2, Samples(pictures[1])).Build(),
         {pictures[1]},
         L"",
         L""},
        {"vorna.lattice",
         LatticeFile().Size(4, 2, 2).Type("ushort").Samples(SamplesOf({pictures[0], pictures[1]})).Build(),
         {pictures[0], pictures[1]},
         L"Vorna",
         L""},
        // The slice in the middle comes first.
        {"pelix.lattice",
         LatticeFile()
             .Magic("# PelixMesh BINARY 2.1")
             .Size(4, 2, 3)
             .Type("ushort")
             .Samples(SamplesOf(pictures))
             .Build(),
         {pictures[1], pictures[0], pictures[1], pictures[2]},
         L"Pelix",
         L""},
    };
}
