#include "registration/Formats.h"

namespace Lumora {

using Tav::Imaging::RawImage::HeaderPattern;
using Tav::Imaging::RawImage::Identity;

namespace {

constexpr Extension mrcExtensions[] = {
    {L".mrc", false},    // the format's own name
    {L".mrcs", false},   // stack of particle images
    {L".preali", false}, // coarsely aligned tilt series
    {L".map", true},     // density map; also source maps and linker maps
    {L".st", true},      // tilt series; also program sources and disk images
    {L".ali", true},     // aligned tilt series; also compiler output and text alignments
    {L".rec", true},     // reconstruction; also recordings
};

constexpr Extension latticeExtensions[] = {
    {L".lattice", false}, // volumes with a text header
};

constexpr Extension dmExtensions[] = {
    {L".dm3", false}, // Digital Micrograph, version 3
    {L".dm4", false}, // Digital Micrograph, version 4
};

constexpr Extension hdfExtensions[] = {
    {L".emd", false}, // electron-microscopy datasets
    {L".h5", true},   // any data in HDF5; most of it is no picture
    {L".hdf5", true}, // the same
};

constexpr Extension serExtensions[] = {
    {L".ser", true}, // series of images or spectra; also serialised objects and films of the sky
};

constexpr Extension emiExtensions[] = {
    {L".emi", false}, // images with their acquisition
};

constexpr Extension npyExtensions[] = {
    {L".npy", false}, // NumPy arrays, pictures or not
};

// RAW and BIN files open by their content. The extensions .raw and .bin are not registered, because many
// other programs use them: the icons and search results of their files must not change.
constexpr Format formats[] = {
    {L"image/x-mrc", mrcExtensions, {Identity::Mrc}},
    {L"image/x-digital-micrograph", dmExtensions, {Identity::Dm3, Identity::Dm4}},
    {L"application/x-hdf5", hdfExtensions, {Identity::Hdf}},
    {L"image/x-ser", serExtensions, {Identity::Ser}},
    {L"image/x-emi", emiExtensions, {Identity::Emi}},
    {L"application/x-npy", npyExtensions, {Identity::Npy}},
    {L"image/x-tav-raw", {}, {Identity::Raw}},
    {L"image/x-tav-bin", {}, {Identity::Bin}},
    {L"image/x-lattice", latticeExtensions, {Identity::Lattice}},
};

} // namespace

std::span<const Format> Formats() noexcept
{
    return formats;
}

// WIC asks the first decoder whose pattern matches. If this decoder refuses the stream, WIC may end the
// search, and the stream's own codec is never asked. So the patterns must match only what we read. There is
// one exception, because a pattern cannot exclude bytes: a metafile that looks like an MRC file. It does no
// harm, because WIC does not read metafiles.
std::vector<HeaderPattern> HeaderPatterns()
{
    std::vector<HeaderPattern> patterns;
    for (const Format& format : formats)
    {
        for (const Identity identity : format.identities)
        {
            const std::vector<HeaderPattern> more = HeaderPatternsOf(identity);
            patterns.insert(patterns.end(), more.begin(), more.end());
        }
    }
    return patterns;
}

} // namespace Lumora
