#include "formats/Identification.h"
#include "support/RandomSeed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <set>
#include <string_view>

using namespace Tav::Imaging::RawImage;

namespace {

using namespace std::string_view_literals;

using Header = std::array<uint8_t, identificationBytes>;

/// What stands at the start of files, and almost that.
constexpr std::string_view starts[] = {
    "# PelixMesh "sv, "# Vorna "sv, "\0\0\0\3"sv,   "\0\0\0\4"sv, "\x89HDF"sv, "JK\0\2"sv,
    "\x93NUMPY"sv,    "II\x97\1"sv, "II*\0"sv,      "MM\0*"sv,    "BM"sv,      "\xFF\xD8"sv,
    "TAV RawImage"sv, "\0\0\1"sv,   "\0\0\x10\0"sv, ""sv,         "\1"sv,      "\x08"sv};

/// Bytes on which some test turns.
constexpr std::string_view turningBytes =
    "\0\0\0\0\0\1\2\3\4\5\6\7\x08\x09\x0C\x10\x65\x89\x93\x97\xFF\xD8# PVJKHDFIM*BTNUYER"sv;

/// The same decision as a chain of tests, each of which names the one that follows it.
class ReferenceIdentification
{
public:
    explicit ReferenceIdentification(const Header& fileHeader) : header(fileHeader) {}

    [[nodiscard]] Identity FirstByte() const
    {
        if (header[0] == 0x23)
        {
            if (header[1] == 0x20 && header[2] == 'P')
                return Spells(2, "PelixMesh ") ? Identity::Lattice : Identity::Unknown;
            if (header[1] == 0x20 && header[2] == 'V')
                return Spells(2, "Vorna ") ? Identity::Lattice : Identity::Unknown;
            return ThirdByte();
        }
        if (header[0] == 0x00)
        {
            if (header[1] == 0x00 && header[2] != 0x00)
                return BigEndianMrc();
            if (header[1] == 0x00 && header[2] == 0x00)
            {
                if (header[3] == 0x03)
                    return Identity::Dm3;
                if (header[3] == 0x04)
                    return Identity::Dm4;
                return LittleEndianMrc();
            }
            return ThirdByte();
        }
        if (header[0] == 0x89)
        {
            if (header[1] == 'H' && header[2] == 'D')
                return header[3] == 'F' ? Identity::Hdf : Identity::Unknown;
            return ThirdByte();
        }
        if (header[0] == 0x4A && header[1] == 0x4B && header[3] == 0x02)
            return Identity::Emi;
        return ThirdByte();
    }

private:
    [[nodiscard]] bool Spells(size_t offset, std::string_view text) const
    {
        return std::equal(text.begin(), text.end(), header.begin() + static_cast<std::ptrdiff_t>(offset),
                          [](char letter, uint8_t byte) { return static_cast<uint8_t>(letter) == byte; });
    }

    [[nodiscard]] bool AreZero(std::initializer_list<size_t> offsets) const
    {
        return std::all_of(offsets.begin(), offsets.end(),
                           [this](size_t offset) { return header[offset] == 0; });
    }

    [[nodiscard]] static bool IsMode(uint8_t mode)
    {
        return mode == 0 || mode == 1 || mode == 2 || mode == 6 || mode == 12 || mode == 16 || mode == 101;
    }

    [[nodiscard]] Identity ThirdByte() const { return header[2] != 0x00 ? Magic() : LittleEndianMrc(); }

    [[nodiscard]] Identity LittleEndianMrc() const
    {
        if (AreZero({3, 6, 7, 11, 13, 14, 15}) && IsMode(header[12]))
            return Spells(41, "EMF") ? Identity::EnhancedMetafile : Identity::Mrc;
        return Magic();
    }

    [[nodiscard]] Identity Magic() const
    {
        if (header[0] == 0x93)
            return Spells(1, "NUMPY") ? Identity::Npy : Identity::Unknown;
        if (header[0] == 'T')
            return Spells(0, "TAV RawImage\0"sv) ? Identity::Raw : Identity::Unknown;
        if (header[0] == 0x49)
        {
            if (header[1] != 'I')
                return Identity::Unknown;
            if (header[2] == 0x97)
                return header[3] == 0x01 ? Identity::Ser : Identity::Unknown;
            return header[2] == 0x2A && header[3] == 0x00 ? Identity::TiffLittleEndian : Identity::Unknown;
        }
        if (header[0] >= 1 && header[0] <= 8 && AreZero({1, 4, 5, 8, 9}))
            return Identity::Bin;
        if (header[0] == 0x42)
            return header[1] == 'M' ? Identity::Bitmap : Identity::Unknown;
        if (header[0] == 0xFF)
            return header[1] == 0xD8 ? Identity::Jpeg : Identity::Unknown;
        if (header[0] == 0x4D && header[1] == 'M' && header[2] == 0x00 && header[3] == '*')
            return Identity::TiffBigEndian;
        if (header[0] != 0x00)
            return Identity::Unknown;
        return header[1] != 0x00 ? Identity::Unknown : BigEndianMrc();
    }

    [[nodiscard]] Identity BigEndianMrc() const
    {
        return AreZero({4, 5, 8, 12, 13, 14}) && IsMode(header[15]) ? Identity::Mrc : Identity::Unknown;
    }

    const Header& header;
};

TEST(RandomIdentification, IsThatOfTheReference)
{
    std::mt19937_64 random{RandomSeed()};
    const auto below = [&random](size_t count) {
        return std::uniform_int_distribution<size_t>{0, count - 1}(random);
    };

    std::set<Identity> seen;
    for (int i = 0; i < 400000 && !HasFailure(); ++i)
    {
        Header header = {};
        const std::string_view start = starts[below(std::size(starts))];
        std::copy(start.begin(), start.end(), header.begin());
        if (below(8) == 0)
            std::copy_n(" EMF", 4, header.begin() + 40);
        for (size_t changes = below(6); changes > 0; --changes)
        {
            const size_t offset = below(4) == 0 ? below(header.size()) : below(16);
            header[offset] = below(8) == 0 ? static_cast<uint8_t>(below(256))
                                           : static_cast<uint8_t>(turningBytes[below(turningBytes.size())]);
        }
        const Identity identity = Identify(header);
        seen.insert(identity);
        EXPECT_EQ(static_cast<int>(identity), static_cast<int>(ReferenceIdentification{header}.FirstByte()))
            << testing::PrintToString(header);
    }
    EXPECT_EQ(seen.size(), static_cast<size_t>(Identity::TiffBigEndian) + 1)
        << "every identity must have come up";
}

} // namespace
