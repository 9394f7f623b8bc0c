#include "registration/Formats.h"

#include <algorithm>

namespace Lumora {

using Tav::Imaging::RawImage::HeaderPattern;
using Tav::Imaging::RawImage::Identity;

namespace {

constexpr Extension mrcExtensions[] = {
    {L".mrc", Use::Own},    // the format's own name; also library catalogues and scripts
    {L".mrcs", Use::Own},   // stack of particle images
    {L".preali", Use::Own}, // coarsely aligned tilt series
    {L".map", Use::Shared}, // density map; also source maps and linker maps
    {L".st", Use::Shared},  // tilt series; also program sources and disk images
    {L".ali", Use::Shared}, // aligned tilt series; also compiler output and text alignments
    {L".rec", Use::Shared}, // reconstruction; also recordings
};

constexpr Extension latticeExtensions[] = {
    {L".lattice", Use::Own}, // volumes with a text header
};

constexpr Extension dmExtensions[] = {
    {L".dm3", Use::Own}, // Digital Micrograph, version 3
    {L".dm4", Use::Own}, // Digital Micrograph, version 4
};

constexpr Extension hdfExtensions[] = {
    {L".emd", Use::Own},      // electron-microscopy datasets
    {L".h5", Use::AnyData},   // any data in HDF5; most of it is no picture
    {L".hdf5", Use::AnyData}, // the same
};

constexpr Extension serExtensions[] = {
    {L".ser", Use::Shared}, // series of images or spectra; also serialised objects and films of the sky
};

constexpr Extension emiExtensions[] = {
    {L".emi", Use::Own}, // images with their acquisition
};

constexpr Extension npyExtensions[] = {
    {L".npy", Use::Own}, // NumPy arrays, pictures or not
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

const Extension* RegisteredExtension(std::wstring_view text) noexcept
{
    // The extensions in the table are ASCII, so no other letters can be equal to theirs.
    const auto lowercase = [](wchar_t character) {
        return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character - L'A' + L'a')
                                                      : character;
    };
    for (const Format& format : formats)
    {
        for (const Extension& extension : format.extensions)
        {
            if (std::ranges::equal(text, std::wstring_view(extension.text), {}, lowercase))
                return &extension;
        }
    }
    return nullptr;
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
