#include "formats/Identification.h"

#include "formats/bin/BinTypes.h"
#include "formats/mrc/MrcModes.h"

#include <algorithm>
#include <array>

namespace Tav::Imaging::RawImage {

namespace {

using Header = std::span<const uint8_t, identificationBytes>;

/// The codes of a table, each of which is less than 256.
template <size_t count>
constexpr std::array<uint8_t, count> CodesOf(const PixelTypeCode (&table)[count])
{
    std::array<uint8_t, count> codes = {};
    std::transform(std::begin(table), std::end(table), codes.begin(),
                   [](const PixelTypeCode& row) { return static_cast<uint8_t>(row.code); });
    return codes;
}

constexpr auto mrcModeBytes = CodesOf(mrcModes);
constexpr auto binTypeBytes = CodesOf(binTypes);

/// One way in which a header can begin: fixed bytes and, if there are choices, one byte with any of these
/// values.
struct Signature
{
    Identity identity;
    HeaderPattern fixed;
    size_t choiceOffset = 0;
    std::span<const uint8_t> choices = {};

    [[nodiscard]] bool Matches(Header header) const noexcept
    {
        return fixed.Matches(header) && (choices.empty() || std::find(choices.begin(), choices.end(),
                                                                      header[choiceOffset]) != choices.end());
    }
};

constexpr HeaderPattern start;

/// Columns and rows below 65,536, sections below 2^24; the mode's byte is left open.
constexpr HeaderPattern littleEndianMrc = start.WithZeros({2, 3, 6, 7, 11, 13, 14, 15});
constexpr HeaderPattern bigEndianMrc = start.WithZeros({0, 1, 4, 5, 8, 12, 13, 14});

/// In the order in which they are tried: the first one that matches decides.
constexpr Signature signatures[] = {
    {Identity::Lattice, start.WithText(0, "# PelixMesh ")},
    {Identity::Lattice, start.WithText(0, "# Vorna ")},
    {Identity::Dm3, start.WithZeros({0, 1, 2}).WithByte(3, 3)}, // the version, big-endian
    {Identity::Dm4, start.WithZeros({0, 1, 2}).WithByte(3, 4)},
    {Identity::Hdf, start.WithText(0, "\x89HDF")},
    {Identity::Emi, start.WithText(0, "JK").WithByte(3, 2)}, // the stamp, and the high byte of the version
    // A metafile's record type and size can look like an MRC header, but its signature identifies it.
    {Identity::EnhancedMetafile, littleEndianMrc.WithText(41, "EMF"), 12, mrcModeBytes},
    {Identity::Mrc, littleEndianMrc, 12, mrcModeBytes},
    {Identity::Npy, start.WithText(0, "\x93NUMPY")},
    {Identity::Raw, start.WithText(0, "TAV RawImage").WithByte(12, 0)},
    {Identity::Ser, start.WithText(0, "II\x97\x01")},
    {Identity::TiffLittleEndian, start.WithText(0, "II*").WithByte(3, 0)},
    // A little-endian type code and two sizes below 65,536: BIN files have no magic word.
    {Identity::Bin, start.WithZeros({1, 4, 5, 8, 9}), 0, binTypeBytes},
    {Identity::Bitmap, start.WithText(0, "BM")},
    {Identity::Jpeg, start.WithText(0, "\xFF\xD8")},
    {Identity::TiffBigEndian, start.WithText(0, "MM").WithByte(2, 0).WithByte(3, '*')},
    {Identity::Mrc, bigEndianMrc, 15, mrcModeBytes},
};

/// Some bits of one byte: the bits outside of the mask are free.
struct ByteChoice
{
    uint8_t value;
    uint8_t bits;
};

/// Merges the values into few choices: two that differ in one bit become one in which that bit is free.
std::vector<ByteChoice> MergedChoices(std::span<const uint8_t> values)
{
    std::vector<ByteChoice> choices;
    for (const uint8_t value : values)
        choices.push_back({value, 0xFF});
    for (uint32_t bit = 1; bit < 0x100; bit <<= 1)
    {
        std::vector<ByteChoice> merged;
        for (const ByteChoice& choice : choices)
        {
            const auto partner = std::find_if(merged.begin(), merged.end(), [&](const ByteChoice& other) {
                return other.bits == choice.bits && (other.value ^ choice.value) == bit;
            });
            if (partner == merged.end())
            {
                merged.push_back(choice);
            }
            else
            {
                partner->value = static_cast<uint8_t>(partner->value & ~bit);
                partner->bits = static_cast<uint8_t>(partner->bits & ~bit);
            }
        }
        choices = std::move(merged);
    }
    return choices;
}

} // namespace

Identity Identify(Header header) noexcept
{
    const auto found =
        std::find_if(std::begin(signatures), std::end(signatures),
                     [header](const Signature& signature) { return signature.Matches(header); });
    return found == std::end(signatures) ? Identity::Unknown : found->identity;
}

std::vector<HeaderPattern> HeaderPatternsOf(Identity identity)
{
    std::vector<HeaderPattern> patterns;
    for (const Signature& signature : signatures)
    {
        if (signature.identity != identity)
            continue;
        if (signature.choices.empty())
            patterns.push_back(signature.fixed);
        for (const ByteChoice& choice : MergedChoices(signature.choices))
            patterns.push_back(signature.fixed.WithByte(signature.choiceOffset, choice.value, choice.bits));
    }
    return patterns;
}

} // namespace Tav::Imaging::RawImage
