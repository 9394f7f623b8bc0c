#pragma once

#include "core/RawImage.h"
#include "platform/Platform.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <string>

namespace Tav::Imaging::RawImage {

/// The properties that an opened file has for the shell.
enum class MetadataProperty
{
    Width = 0,
    Height = 1,
    Dimensions = 2,
    FrameCount = 3,
    BitDepth = 4,
    PixelFormat = 5,
    Software = 6,
    FormatDetails = 7,
    /// No property: how many there are.
    Count,
};

constexpr size_t metadataPropertyCount = static_cast<size_t>(MetadataProperty::Count);

/// Reads the header of the frame whose facts are the file's: the first one that is no embedded thumbnail.
/// Returns false, and throws, as RawImage::Open does.
[[nodiscard]] bool OpenForMetadata(RawImage& image, IStream* stream);

/// The facts of one opened image, kept after its reader is gone.
class Metadata
{
public:
    virtual ~Metadata() = default;

    /// Copies the facts of the holder's reader. A fact that the image does not have keeps its old value.
    void FillFromImage(const RawImage& image);

    /// Renders one property: VT_UI4, or VT_LPWSTR in memory that the caller frees with PropVariantClear.
    /// False, with an empty variant, when the property has no value.
    [[nodiscard]] bool Get(MetadataProperty prop, PROPVARIANT& variant) const noexcept;

private:
    /// Indices of `values`, which are the numbers before the texts, and of the flags that say which facts are
    /// known.
    enum Fact : size_t
    {
        WidthFact,
        HeightFact,
        FrameCountFact,
        BitDepthFact,
        PixelTypeFact,
        ByteOrderFact,
        SoftwareFact,
        FormatDetailsFact,
        FactCount,
    };

    void SetValue(Fact fact, uint32_t value);
    [[nodiscard]] bool GetNumber(Fact fact, PROPVARIANT& variant) const;
    [[nodiscard]] std::wstring DimensionsText() const;
    [[nodiscard]] std::wstring PixelFormatText() const;

    std::array<uint32_t, SoftwareFact> values = {};
    std::wstring software;
    std::wstring formatDetails;
    std::bitset<FactCount> isSet;
};

} // namespace Tav::Imaging::RawImage
