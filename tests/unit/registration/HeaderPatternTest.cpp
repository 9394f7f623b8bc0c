#include "formats/bin/RawImageBin.h"
#include "formats/mrc/RawImageMrc.h"
#include "registration/Formats.h"
#include "support/RandomSeed.h"
#include "support/files/BinFile.h"
#include "support/files/MrcFile.h"
#include "support/gray/GrayFiles.h"
#include "support/gray/GrayStack.h"
#include "support/streams/TestStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iomanip>
#include <map>
#include <random>
#include <sstream>
#include <string_view>
#include <vector>

using namespace std::string_view_literals;
using namespace Tav::Imaging::RawImage;

namespace {

using Header = std::array<uint8_t, HeaderPattern::size>;

constexpr uint8_t mrcModes[] = {0, 1, 2, 6, 12, 16, 101};

bool IsOffered(const Header& header)
{
    static const std::vector<HeaderPattern> patterns = Lumora::HeaderPatterns();
    return std::any_of(patterns.begin(), patterns.end(),
                       [&header](const HeaderPattern& pattern) { return pattern.Matches(header); });
}

bool HasReader(Identity identity)
{
    return identity >= Identity::Lattice && identity <= Identity::Bin;
}

Header HeaderOf(const Bytes& file)
{
    Header header = {};
    std::copy_n(file.begin(), header.size(), header.begin());
    return header;
}

/// Whether a reader takes a file that it is handed whatever identification says.
template <typename Reader>
bool IsRead(const Bytes& file)
{
    TestStream stream{file};
    return Reader{}.Read(&stream, file.size(), readModeHeader, 0);
}

void ExpectIdentifiedAndOffered(const Bytes& file, bool isRead, Identity identity, uint32_t code)
{
    const Header header = HeaderOf(file);
    EXPECT_EQ(Identify(header) == identity, isRead) << code;
    EXPECT_EQ(IsOffered(header), isRead) << code;
}

/// Whether no pattern can leave the header out, although we refuse it: a pattern cannot say "not a metafile".
bool IsOfferedInVain(const Header& header)
{
    return Identify(header) == Identity::EnhancedMetafile;
}

std::string Hex(const Header& header)
{
    std::ostringstream text;
    for (const uint8_t byte : header)
        text << std::hex << std::setw(2) << std::setfill('0') << int{byte} << ' ';
    return text.str();
}

/// Headers near the places where the decisions change: a known beginning, noise where it does not matter or
/// zeros, and then a few bytes that may spoil it.
class HeaderSource
{
public:
    explicit HeaderSource(uint32_t seed) : random(seed) {}

    Header Next()
    {
        Header header = {};
        if (OneIn(2))
            std::generate(header.begin(), header.end(), [this] { return LikelyByte(); });
        Begin(header);
        for (uint32_t spoiled = Below(4); spoiled > 0; --spoiled)
            Spoil(header);
        return header;
    }

private:
    uint32_t Below(uint32_t end) { return std::uniform_int_distribution<uint32_t>(0, end - 1)(random); }
    bool OneIn(uint32_t count) { return Below(count) == 0; }

    uint8_t LikelyByte()
    {
        constexpr std::string_view magicBytes = "\x01\x02\x03\x04\x06\x08\x0c\x10\x65\x89\x93\x97\xff\xd8#"
                                                " PVJKIMBTEFH*"sv;
        switch (Below(4))
        {
        case 0:
            return static_cast<uint8_t>(Below(256));
        case 1:
            return static_cast<uint8_t>(magicBytes[Below(static_cast<uint32_t>(magicBytes.size()))]);
        default:
            return 0;
        }
    }

    static void Put(Header& header, size_t offset, std::string_view text)
    {
        for (const char character : text)
            header[offset++] = static_cast<uint8_t>(character);
    }

    static void Clear(Header& header, std::initializer_list<size_t> offsets)
    {
        for (const size_t offset : offsets)
            header[offset] = 0;
    }

    void Begin(Header& header)
    {
        constexpr std::string_view beginnings[] = {
            "# PelixMesh "sv, "# Vorna "sv,   "\0\0\0\x03"sv,     "\0\0\0\x04"sv, "\x89HDF"sv,
            "JK\0\x02"sv,     "\x93NUMPY"sv,  "TAV RawImage\0"sv, "II\x97\x01"sv, "II*\0"sv,
            "MM\0*"sv,        "BM"sv,         "\xFF\xD8\xFF"sv,   "\x01\0"sv,     "\x08\0"sv,
            "\0\0\0\0"sv,     "\0\0\x10\0"sv,
        };
        const uint8_t mode = mrcModes[Below(std::size(mrcModes))];
        switch (Below(4))
        {
        case 0:
            Clear(header, {2, 3, 6, 7, 11, 13, 14, 15});
            header[12] = mode;
            break;
        case 1:
            Clear(header, {0, 1, 4, 5, 8, 12, 13, 14});
            header[15] = mode;
            break;
        default:
            Put(header, 0, beginnings[Below(std::size(beginnings))]);
            break;
        }
        // Both tests at once, or a signature of another kind in front of a plausible rest.
        if (OneIn(8))
        {
            Clear(header, {4, 5, 8, 9, 12, 13, 14});
            header[15] = mode;
        }
        if (OneIn(8))
            Put(header, 0, beginnings[Below(std::size(beginnings))]);
        if (OneIn(8))
            Put(header, 40, OneIn(4) ? " EMf"sv : " EMF"sv);
    }

    void Spoil(Header& header)
    {
        uint8_t& byte = header[OneIn(4) ? 40 + Below(4) : Below(17)];
        byte = OneIn(2) ? LikelyByte() : static_cast<uint8_t>(byte ^ (1U << Below(8)));
    }

    std::mt19937 random;
};

TEST(HeaderPatterns, OfferUsExactlyTheHeadersThatHaveAReader)
{
    HeaderSource source(RandomSeed());
    std::map<Identity, int> seen;
    int offeredInVain = 0;
    for (int i = 0; i < 500'000; ++i)
    {
        const Header header = source.Next();
        const Identity identity = Identify(header);
        const bool inVain = IsOfferedInVain(header);
        ++seen[identity];
        offeredInVain += inVain ? 1 : 0;
        ASSERT_EQ(IsOffered(header), HasReader(identity) || inVain) << Hex(header);
    }
    // Every decision has been met, often.
    for (int identity = 0; identity <= static_cast<int>(Identity::TiffBigEndian); ++identity)
        EXPECT_GT(seen[static_cast<Identity>(identity)], 250)
            << identity << ": too few headers begin as this format does";
    EXPECT_GT(offeredInVain, 250);
}

TEST(HeaderPatterns, OfferTheModesThatTheMrcReaderTakesAndNoOthers)
{
    for (uint32_t mode = 0; mode < 300; ++mode)
    {
        // No columns and rows of 65,536 or more: the other byte order makes nothing of this size.
        for (const auto order : {MrcFile::ByteOrder::LittleEndian, MrcFile::ByteOrder::BigEndian})
        {
            const Bytes file = MrcFile().Order(order).Size(2, 2, 1).Mode(mode).Samples(Bytes(64)).Build();
            ExpectIdentifiedAndOffered(file, IsRead<RawImageMrc>(file), Identity::Mrc, mode);
        }
    }
}

TEST(HeaderPatterns, OfferTheTypesThatTheBinReaderTakesAndNoOthers)
{
    constexpr size_t sampleBytes[] = {1, 1, 2, 4, 1, 2, 4, 4, 8};
    for (uint16_t type = 0; type < 300; ++type)
    {
        const size_t frameBytes = type < std::size(sampleBytes) ? 64 * sampleBytes[type] : 64;
        const Bytes file = BinFile().Size(8, 8).Samples(type, Bytes(frameBytes, 0xFF)).Build();
        ExpectIdentifiedAndOffered(file, IsRead<RawImageBin>(file), Identity::Bin, type);
    }
}

TEST(HeaderPatterns, OfferAFileOfEachFormat)
{
    EXPECT_TRUE(IsOffered(HeaderOf(GrayStack(1))));
    for (const GrayFile& file : GrayFiles())
        EXPECT_TRUE(IsOffered(HeaderOf(file.content))) << file.name;
}

TEST(HeaderPatterns, OfferEveryModeThatIsReadInBothByteOrders)
{
    for (int mode = 0; mode < 256; ++mode)
    {
        const bool isRead = std::find(std::begin(mrcModes), std::end(mrcModes), mode) != std::end(mrcModes);
        Header little = {4, 0, 0, 0, 3, 0, 0, 0, 2, 0, 0, 0};
        little[12] = static_cast<uint8_t>(mode);
        EXPECT_EQ(IsOffered(little), isRead) << mode;
        Header big = {0, 0, 0, 5, 0, 0, 0, 3, 0, 0, 0, 2};
        big[15] = static_cast<uint8_t>(mode);
        EXPECT_EQ(IsOffered(big), isRead) << mode;
    }
}

TEST(HeaderPatterns, LeaveThePicturesOfWindowsToTheirCodecs)
{
    const std::string_view others[] = {
        "\x89PNG\r\n\x1A\n\0\0\0\rIHDR"sv,     // PNG
        "\xFF\xD8\xFF\xE0\0\x10JFIF\0"sv,      // JPEG
        "BM\x36\0\0\0\0\0\0\0\x36\0\0\0"sv,    // bitmap
        "GIF89a\x01\0\x01\0"sv,                // GIF
        "II*\0\x08\0\0\0"sv,                   // TIFF, little-endian
        "MM\0*\0\0\0\x08"sv,                   // TIFF, big-endian
        "\0\0\x01\0\x01\0\x10\x10\0\0\x01\0"sv // icon
        " \0\x68\x04\0\0\x16\0\0\0"sv,
        "\0\0\x02\0\x01\0\x20\x20\0\0\x10\0"sv // cursor
        "\x10\0\xA8\x10\0\0\x16\0\0\0"sv,
    };
    for (const std::string_view beginning : others)
    {
        Header header = {};
        std::copy(beginning.begin(), beginning.end(), header.begin());
        EXPECT_FALSE(IsOffered(header)) << Hex(header);
    }
}

TEST(HeaderPatterns, OfferAMetafileThatLooksLikeAnMrcFile)
{
    Header header = {1, 0, 0, 0, 0x6C, 0, 0, 0};
    header[40] = ' ';
    header[41] = 'E';
    header[42] = 'M';
    header[43] = 'F';
    ASSERT_EQ(Identify(header), Identity::EnhancedMetafile);
    EXPECT_TRUE(IsOffered(header));
}

TEST(HeaderPatterns, WantNoBitThatTheirMaskHides)
{
    for (const HeaderPattern& pattern : Lumora::HeaderPatterns())
    {
        for (size_t i = 0; i < HeaderPattern::size; ++i)
            EXPECT_EQ(pattern.bytes[i] & ~pattern.mask[i], 0) << i;
    }
}

} // namespace
