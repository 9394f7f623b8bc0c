#include "formats/Identification.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string_view>
#include <utility>

using namespace Tav::Imaging::RawImage;

namespace {

using namespace std::string_view_literals;

using Header = std::array<uint8_t, identificationBytes>;

/// A header that begins with this text, has these bytes at these offsets, and zeros elsewhere.
Header HeaderOf(std::string_view start, std::initializer_list<std::pair<size_t, uint8_t>> bytes = {})
{
    Header header = {};
    std::copy(start.begin(), start.end(), header.begin());
    for (const auto& [offset, byte] : bytes)
        header[offset] = byte;
    return header;
}

struct Row
{
    const char* what;
    Header header;
    Identity identity;
};

template <size_t count>
void ExpectIdentities(const Row (&rows)[count])
{
    for (const Row& row : rows)
        EXPECT_EQ(static_cast<int>(Identify(row.header)), static_cast<int>(row.identity)) << row.what;
}

TEST(Identification, OfLatticeFilesSpellsTheirWords)
{
    const Row rows[] = {
        {"first word", HeaderOf("# PelixMesh "), Identity::Lattice},
        {"second word", HeaderOf("# Vorna "), Identity::Lattice},
        {"first word without the space", HeaderOf("# PelixMesh"), Identity::Unknown},
        {"second word without the space", HeaderOf("# Vorna"), Identity::Unknown},
        {"first word, then a line end", HeaderOf("# PelixMesh\n"), Identity::Unknown},
        {"wrong last letter", HeaderOf("# PelixMesk "), Identity::Unknown},
        {"wrong letter case", HeaderOf("# pelixMesh "), Identity::Unknown},
        {"wrong second letter", HeaderOf("# Verna "), Identity::Unknown},
        {"wrong last letter of the second word", HeaderOf("# Vorne "), Identity::Unknown},
        {"another word", HeaderOf("# Other "), Identity::Unknown},
        {"no space before the word", HeaderOf("#PelixMesh "), Identity::Unknown},
        // With b2 = 0 the little-endian MRC test comes first, whatever the first byte is.
        {"a # that counts the columns of an MRC file", HeaderOf("#"), Identity::Mrc},
        {"# and space that count columns", HeaderOf("# "), Identity::Mrc},
    };
    ExpectIdentities(rows);
}

TEST(Identification, OfEveryWrongByteInALatticeWordIsUnknown)
{
    for (const std::string_view start : {"# PelixMesh "sv, "# Vorna "sv})
    {
        for (size_t offset = 3; offset < start.size(); ++offset)
        {
            Header header = HeaderOf(start);
            header[offset] ^= 1;
            EXPECT_EQ(Identify(header), Identity::Unknown) << start << offset;
        }
    }
}

TEST(Identification, OfTagFilesIsTheirVersionWord)
{
    const Row rows[] = {
        {"version 3", HeaderOf("\0\0\0\3"sv), Identity::Dm3},
        {"version 4", HeaderOf("\0\0\0\4"sv), Identity::Dm4},
        // Byte 15, the mode word's last one, would make it a big-endian MRC file.
        {"version 3 before a big-endian MRC header", HeaderOf("\0\0\0\3"sv, {{15, 2}}), Identity::Dm3},
        {"version 4 before a big-endian MRC header", HeaderOf("\0\0\0\4"sv, {{7, 9}, {11, 1}}),
         Identity::Dm4},
        {"version 2 that is a big-endian count of columns", HeaderOf("\0\0\0\2"sv), Identity::Mrc},
        {"version 5 with nothing of an MRC file", HeaderOf("\0\0\0\5"sv, {{12, 1}, {13, 1}}),
         Identity::Unknown},
    };
    ExpectIdentities(rows);
}

TEST(Identification, OfHdf5FilesLooksAtFourBytes)
{
    const Row rows[] = {
        {"signature", HeaderOf("\x89HDF\r\n\x1A\n"), Identity::Hdf},
        {"later bytes are not looked at", HeaderOf("\x89HDFxxxx"), Identity::Hdf},
        {"wrong fourth byte", HeaderOf("\x89HDf\r\n\x1A\n"), Identity::Unknown},
        {"wrong fourth byte 0", HeaderOf("\x89HD"), Identity::Unknown},
        {"wrong second byte", HeaderOf("\x89PNG\r\n\x1A\n"), Identity::Unknown},
        {"wrong third byte", HeaderOf("\x89HEF\r\n\x1A\n"), Identity::Unknown},
        {"a first byte that counts the columns of an MRC file", HeaderOf("\x89H"), Identity::Mrc},
    };
    ExpectIdentities(rows);
}

TEST(Identification, OfEmiFilesSkipsTheThirdByte)
{
    const Row rows[] = {
        {"usual header", HeaderOf("JK\0\2"sv), Identity::Emi},
        {"another third byte", HeaderOf("JK\xFF\2"sv), Identity::Emi},
        {"wrong fourth byte, which leaves an MRC header", HeaderOf("JK\0\0"sv), Identity::Mrc},
        {"wrong fourth byte", HeaderOf("JK\0\1"sv), Identity::Unknown},
        {"wrong fourth byte after another third byte", HeaderOf("JK\1\3"sv), Identity::Unknown},
        {"wrong second byte", HeaderOf("JL\0\2"sv), Identity::Unknown},
        {"wrong first byte", HeaderOf("KK\0\2"sv), Identity::Unknown},
    };
    ExpectIdentities(rows);
}

TEST(Identification, OfLittleEndianMrcFilesLooksAtSomeBytesOfTheHeader)
{
    const Row rows[] = {
        {"nothing but zeros", HeaderOf(""), Identity::Mrc},
        {"4096 x 4096 x 1, mode 2", HeaderOf("\0\x10\0\0\0\x10\0\0\1\0\0\0\2"sv), Identity::Mrc},
        {"65535 columns", HeaderOf("\xFF\xFF\0\0\1\0\0\0\1\0\0\0\1"sv), Identity::Mrc},
        {"65535 rows", HeaderOf("\1\0\0\0\xFF\xFF\0\0\1\0\0\0\1"sv), Identity::Mrc},
        {"16777215 sections", HeaderOf("\1\0\0\0\1\0\0\0\xFF\xFF\xFF\0\1"sv), Identity::Mrc},
        // The third byte of the columns leads to the tests by first byte, so these files are not found.
        {"65536 columns", HeaderOf("\0\0\1\0\1\0\0\0\1\0\0\0\1"sv), Identity::Unknown},
        {"65537 columns", HeaderOf("\x40\0\1\0\1\0\0\0\1\0\0\0\1"sv), Identity::Unknown},
        {"16777216 columns", HeaderOf("\x40\0\0\1\1\0\0\0\1\0\0\0\1"sv), Identity::Unknown},
        {"65536 rows", HeaderOf("\x40\0\0\0\1\0\1\0\1\0\0\0\1"sv), Identity::Unknown},
        {"16777216 rows", HeaderOf("\x40\0\0\0\1\0\0\1\1\0\0\0\1"sv), Identity::Unknown},
        {"16777216 sections", HeaderOf("\x40\0\0\0\1\0\0\0\1\0\0\1\1"sv), Identity::Unknown},
        {"mode 256 + 1", HeaderOf("\x40\0\0\0\1\0\0\0\1\0\0\0\1\1"sv), Identity::Unknown},
        {"mode 65536 + 1", HeaderOf("\x40\0\0\0\1\0\0\0\1\0\0\0\1\0\1"sv), Identity::Unknown},
        {"mode 16777216 + 1", HeaderOf("\x40\0\0\0\1\0\0\0\1\0\0\0\1\0\0\1"sv), Identity::Unknown},
    };
    ExpectIdentities(rows);
}

TEST(Identification, OfMrcFilesKnowsSevenModes)
{
    for (uint32_t mode = 0; mode < 256; ++mode)
    {
        const bool isKnown =
            mode == 0 || mode == 1 || mode == 2 || mode == 6 || mode == 12 || mode == 16 || mode == 101;
        const auto byte = static_cast<uint8_t>(mode);
        const Identity identity = isKnown ? Identity::Mrc : Identity::Unknown;
        // 64 columns, so that neither the tests by first byte nor the big-endian test find anything.
        EXPECT_EQ(Identify(HeaderOf("\x40", {{12, byte}})), identity) << mode;
        // The same, big-endian: 64, 64 and 1.
        EXPECT_EQ(Identify(HeaderOf("", {{2, 1}, {3, 64}, {7, 64}, {11, 1}, {15, byte}})), identity) << mode;
    }
}

TEST(Identification, OfBigEndianMrcFilesLooksAtSomeBytesOfTheHeader)
{
    const Row rows[] = {
        {"4096 x 4096 x 1, mode 2", HeaderOf("\0\0\x10\0\0\0\x10\0\0\0\0\1\0\0\0\2"sv), Identity::Mrc},
        {"65535 columns and rows", HeaderOf("\0\0\xFF\xFF\0\0\xFF\xFF\0\0\0\1\0\0\0\2"sv), Identity::Mrc},
        {"16777215 sections", HeaderOf("\0\0\1\0\0\0\1\0\0\xFF\xFF\xFF\0\0\0\2"sv), Identity::Mrc},
        {"less than 256 columns", HeaderOf("\0\0\0\x40\0\0\0\x40\0\0\0\1\0\0\0\2"sv), Identity::Mrc},
        {"65536 columns", HeaderOf("\0\1\0\0\0\0\1\0\0\0\0\1\0\0\0\2"sv), Identity::Unknown},
        {"65536 + 256 columns", HeaderOf("\0\1\1\0\0\0\1\0\0\0\0\1\0\0\0\2"sv), Identity::Unknown},
        {"65536 rows", HeaderOf("\0\0\1\0\0\1\0\0\0\0\0\1\0\0\0\2"sv), Identity::Unknown},
        {"16777216 rows", HeaderOf("\0\0\1\0\1\0\0\0\0\0\0\1\0\0\0\2"sv), Identity::Unknown},
        {"16777216 sections", HeaderOf("\0\0\1\0\0\0\1\0\1\0\0\0\0\0\0\2"sv), Identity::Unknown},
        {"mode 256 + 2", HeaderOf("\0\0\1\0\0\0\1\0\0\0\0\1\0\0\1\2"sv), Identity::Unknown},
        {"mode 65536 + 2", HeaderOf("\0\0\1\0\0\0\1\0\0\0\0\1\0\1\0\2"sv), Identity::Unknown},
        {"mode 16777216 + 2", HeaderOf("\0\0\1\0\0\0\1\0\0\0\0\1\1\0\0\2"sv), Identity::Unknown},
    };
    ExpectIdentities(rows);
}

TEST(Identification, OfMetafilesNeedsTheLittleEndianMrcTest)
{
    const Header metafile = HeaderOf("\1", {{40, ' '}, {41, 'E'}, {42, 'M'}, {43, 'F'}});
    EXPECT_EQ(Identify(metafile), Identity::EnhancedMetafile);

    Header header = metafile;
    header[40] = 'x';
    EXPECT_EQ(Identify(header), Identity::EnhancedMetafile) << "byte 40 is not looked at";
    for (const size_t offset : {41U, 42U, 43U})
    {
        header = metafile;
        header[offset] = 'x';
        EXPECT_EQ(Identify(header), Identity::Mrc) << offset;
    }

    // Real ones tell their size in byte 4 and have a bounding box from byte 8 on.
    header = metafile;
    header[4] = 108;
    EXPECT_EQ(Identify(header), Identity::EnhancedMetafile);
    header[12] = 3;
    EXPECT_EQ(Identify(header), Identity::Unknown) << "no mode, and byte 4 is not 0";
    header[4] = 0;
    EXPECT_EQ(Identify(header), Identity::Bin) << "no mode";

    // Big-endian MRC files are not asked.
    EXPECT_EQ(Identify(HeaderOf("\0\0\1"sv, {{15, 2}, {41, 'E'}, {42, 'M'}, {43, 'F'}})), Identity::Mrc);
}

TEST(Identification, OfNpyFilesIsTheirMagic)
{
    const Row rows[] = {
        {"magic", HeaderOf("\x93NUMPY"), Identity::Npy},
        {"wrong second byte", HeaderOf("\x93nUMPY"), Identity::Unknown},
        {"wrong third byte", HeaderOf("\x93NuMPY"), Identity::Unknown},
        {"wrong fourth byte", HeaderOf("\x93NUmPY"), Identity::Unknown},
        {"wrong fifth byte", HeaderOf("\x93NUMpY"), Identity::Unknown},
        {"wrong last byte", HeaderOf("\x93NUMPy"), Identity::Unknown},
        {"cut to an MRC header", HeaderOf("\x93N"), Identity::Mrc},
    };
    ExpectIdentities(rows);
}

TEST(Identification, OfRawFilesIsTheirTextWithItsEnd)
{
    constexpr std::string_view text = "TAV RawImage";
    EXPECT_EQ(Identify(HeaderOf(text)), Identity::Raw);
    EXPECT_EQ(Identify(HeaderOf(text, {{12, ' '}})), Identity::Unknown);
    EXPECT_EQ(Identify(HeaderOf(text, {{13, 0xFF}})), Identity::Raw);
    for (size_t offset = 1; offset < text.size(); ++offset)
        EXPECT_EQ(Identify(HeaderOf(text, {{offset, 'x'}})), Identity::Unknown) << offset;
}

TEST(Identification, OfTwoLettersIIIsSerOrTiff)
{
    const Row rows[] = {
        {"series", HeaderOf("II\x97\1"), Identity::Ser},
        {"series of a wrong version", HeaderOf("II\x97\2"), Identity::Unknown},
        {"series of version 0", HeaderOf("II\x97"), Identity::Unknown},
        {"TIFF", HeaderOf("II*\0"sv), Identity::TiffLittleEndian},
        {"TIFF with a wrong fourth byte", HeaderOf("II*\1"), Identity::Unknown},
        {"big TIFF", HeaderOf("II+\0"sv), Identity::Unknown},
        {"one letter only", HeaderOf("IK*\0"sv), Identity::Unknown},
        {"one letter before a series", HeaderOf("IJ\x97\1"), Identity::Unknown},
        {"letters that count the columns of an MRC file", HeaderOf("II"), Identity::Mrc},
    };
    ExpectIdentities(rows);
}

TEST(Identification, OfBinFilesAsksForASmallTypeAndTwoSmallSizes)
{
    // Bytes 12 and 13 keep the header from being an MRC one.
    for (uint32_t type = 0; type < 256; ++type)
    {
        const auto byte = static_cast<uint8_t>(type);
        const bool isType = type >= 1 && type <= 8;
        EXPECT_EQ(Identify(HeaderOf("", {{0, byte}, {2, 1}, {3, 2}, {6, 3}, {7, 4}, {13, 1}})),
                  isType ? Identity::Bin : Identity::Unknown)
            << type;
    }
    for (const size_t offset : {1U, 4U, 5U, 8U, 9U})
    {
        Header header = HeaderOf("\3", {{2, 1}, {6, 1}, {13, 1}});
        EXPECT_EQ(Identify(header), Identity::Bin);
        header[offset] = 1;
        EXPECT_EQ(Identify(header), Identity::Unknown) << offset;
    }
    // The low byte of the width is 0, so the MRC test comes first, and fails by the height.
    EXPECT_EQ(Identify(HeaderOf("\3", {{3, 2}, {7, 2}})), Identity::Bin);
    // The width is 0 and the height small: that is an MRC header as well.
    EXPECT_EQ(Identify(HeaderOf("\3", {{12, 16}})), Identity::Mrc);
}

TEST(Identification, OfPicturesThatOthersDecodeIsTheirMagic)
{
    const Row rows[] = {
        {"bitmap", HeaderOf("BM\x36"), Identity::Bitmap},
        {"no bitmap", HeaderOf("BN\x36"), Identity::Unknown},
        {"bitmap with a size of 0 modulo 256, which leaves an MRC header", HeaderOf("BM"), Identity::Mrc},
        {"JPEG", HeaderOf("\xFF\xD8\xFF\xE0"), Identity::Jpeg},
        {"no JPEG", HeaderOf("\xFF\xD9\xFF\xE0"), Identity::Unknown},
        {"big-endian TIFF", HeaderOf("MM\0*"sv), Identity::TiffBigEndian},
        {"big-endian big TIFF", HeaderOf("MM\0+"sv), Identity::Unknown},
        {"big-endian TIFF with a wrong third byte", HeaderOf("MM\1*"), Identity::Unknown},
        {"one letter", HeaderOf("ML\0*"sv), Identity::Unknown},
        {"letters that count the columns of an MRC file", HeaderOf("MM"), Identity::Mrc},
        {"GIF", HeaderOf("GIF89a"), Identity::Unknown},
        {"text", HeaderOf("hello, world"), Identity::Unknown},
    };
    ExpectIdentities(rows);
}

} // namespace
