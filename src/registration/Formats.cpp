#include "registration/Formats.h"

namespace Lumora {

namespace {

// The signatures say of a header what the identification of formats decides about it, as far as the pattern
// language goes. WIC asks whoever matches first, and a decoder that then refuses the stream can end the
// search: what is claimed here and not read may be lost to its own codec.
//
// A pattern cannot say "not". Two exceptions to the MRC tests are therefore offered to us and refused:
// - an Enhanced Metafile (bytes 41 to 43 are "EMF") whose header passes the little-endian MRC test. Nobody
//   else loses by that: WIC does not read metafiles.
// - a Digital Micrograph file (the big-endian version word 3 or 4 comes first) whose header passes the
//   big-endian MRC test, while there is no reader for these files.

/// The modes of MRC files that are read.
constexpr ByteChoice mrcModes[] = {
    {0x00, 0xFE}, // 0 and 1
    {0x02, 0xFB}, // 2 and 6
    {0x0C, 0xFF}, // 12
    {0x10, 0xFF}, // 16
    {0x65, 0xFF}, // 101
};

constexpr Signature mrcSignatures[] = {
    // Little-endian words: columns below 65,536, rows below 65,536, sections below 2^24, then the mode.
    {HeaderPattern{}.WithZeros({2, 3, 6, 7, 11, 13, 14, 15}), 12, mrcModes},
    // Big-endian words with the same limits.
    {HeaderPattern{}.WithZeros({0, 1, 4, 5, 8, 12, 13, 14}), 15, mrcModes},
};

constexpr Extension mrcExtensions[] = {
    {L".mrc", false},    // the format's own name
    {L".mrcs", false},   // stack of particle images
    {L".preali", false}, // coarsely aligned tilt series
    {L".map", true},     // density map; also source maps and linker maps
    {L".st", true},      // tilt series; also program sources and disk images
    {L".ali", true},     // aligned tilt series; also compiler output and text alignments
    {L".rec", true},     // reconstruction; also recordings
};

constexpr Format formats[] = {
    {L"image/x-mrc", mrcExtensions, mrcSignatures},
};

} // namespace

std::span<const Format> Formats() noexcept
{
    return formats;
}

std::vector<HeaderPattern> HeaderPatterns()
{
    std::vector<HeaderPattern> patterns;
    for (const Format& format : formats)
    {
        for (const Signature& signature : format.signatures)
        {
            if (signature.choices.empty())
                patterns.push_back(signature.fixed);
            for (const ByteChoice& choice : signature.choices)
                patterns.push_back(
                    signature.fixed.WithByte(signature.choiceOffset, choice.value, choice.bits));
        }
    }
    return patterns;
}

} // namespace Lumora
