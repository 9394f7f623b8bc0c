#include "registration/Formats.h"

namespace Lumora {

namespace {

// The signatures say of a header what the identification of formats decides about it, as far as the pattern
// language goes. WIC asks whoever matches first, and a decoder that then refuses the stream can end the
// search: what is claimed here and not read may be lost to its own codec.
//
// A pattern cannot say "not". One exception to the MRC and BIN tests is therefore offered to us and refused:
// an Enhanced Metafile (bytes 41 to 43 are "EMF") whose header passes the little-endian MRC test. Nobody else
// loses by that: WIC does not read metafiles.

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

constexpr Signature latticeSignatures[] = {
    {HeaderPattern{}.WithText(0, "# PelixMesh ")},
    {HeaderPattern{}.WithText(0, "# Vorna ")},
};

constexpr Extension latticeExtensions[] = {
    {L".lattice", false}, // volumes with a text header
};

/// The big-endian version word.
constexpr Signature dmSignatures[] = {
    {HeaderPattern{}.WithZeros({0, 1, 2}).WithByte(3, 3)},
    {HeaderPattern{}.WithZeros({0, 1, 2}).WithByte(3, 4)},
};

constexpr Extension dmExtensions[] = {
    {L".dm3", false}, // Digital Micrograph, version 3
    {L".dm4", false}, // Digital Micrograph, version 4
};

constexpr Signature hdfSignatures[] = {
    {HeaderPattern{}.WithText(0, "\x89HDF")},
};

constexpr Extension hdfExtensions[] = {
    {L".emd", false}, // electron-microscopy datasets
    {L".h5", true},   // any data in HDF5; most of it is no picture
    {L".hdf5", true}, // the same
};

constexpr Signature serSignatures[] = {
    {HeaderPattern{}.WithText(0, "II\x97\x01")},
};

constexpr Extension serExtensions[] = {
    {L".ser", true}, // series of images or spectra; also serialised objects and films of the sky
};

/// The stamp, and the high byte of the version.
constexpr Signature emiSignatures[] = {
    {HeaderPattern{}.WithText(0, "JK").WithByte(3, 2)},
};

constexpr Extension emiExtensions[] = {
    {L".emi", false}, // images with their acquisition
};

constexpr Signature npySignatures[] = {
    {HeaderPattern{}.WithText(0, "\x93NUMPY")},
};

constexpr Extension npyExtensions[] = {
    {L".npy", false}, // NumPy arrays, pictures or not
};

constexpr Signature rawSignatures[] = {
    {HeaderPattern{}.WithText(0, "TAV RawImage").WithByte(12, 0)},
};

/// The type codes of BIN files, 1 to 8.
constexpr ByteChoice binTypes[] = {
    {0x01, 0xFF}, // 1
    {0x02, 0xFE}, // 2 and 3
    {0x04, 0xFC}, // 4 to 7
    {0x08, 0xFF}, // 8
};

/// A little-endian type code, and two sizes below 65,536.
constexpr Signature binSignatures[] = {
    {HeaderPattern{}.WithZeros({1, 4, 5, 8, 9}), 0, binTypes},
};

// RAW and BIN files open by their content. The extensions .raw and .bin belong to cameras and to everybody:
// nothing is said about them, so that no other program's files change how they look or are searched.
constexpr Format formats[] = {
    {L"image/x-mrc", mrcExtensions, mrcSignatures},
    {L"image/x-digital-micrograph", dmExtensions, dmSignatures},
    {L"application/x-hdf5", hdfExtensions, hdfSignatures},
    {L"image/x-ser", serExtensions, serSignatures},
    {L"image/x-emi", emiExtensions, emiSignatures},
    {L"application/x-npy", npyExtensions, npySignatures},
    {L"image/x-tav-raw", {}, rawSignatures},
    {L"image/x-tav-bin", {}, binSignatures},
    {L"image/x-lattice", latticeExtensions, latticeSignatures},
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
