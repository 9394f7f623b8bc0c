#pragma once

#include "metadata/Metadata.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

namespace Lumora {

using Tav::Imaging::RawImage::MetadataProperty;
using Tav::Imaging::RawImage::metadataPropertyCount;

/// A number or a text; nothing when the file does not have the property.
using PropertyValue = std::variant<std::monostate, uint32_t, std::wstring>;

/// What is known of a file.
class FileProperties
{
public:
    [[nodiscard]] PropertyValue& operator[](MetadataProperty property) noexcept
    {
        return values[static_cast<size_t>(property)];
    }
    [[nodiscard]] const PropertyValue& operator[](MetadataProperty property) const noexcept
    {
        return values[static_cast<size_t>(property)];
    }

    /// The number; 0 for any other value.
    [[nodiscard]] uint32_t NumberOf(MetadataProperty property) const noexcept;

    /// The value in words; empty when the file does not have the property.
    [[nodiscard]] std::wstring TextOf(MetadataProperty property) const;

    template <class Archive>
    void Transfer(Archive& archive)
    {
        for (PropertyValue& value : values)
            archive.Field(value);
    }

private:
    std::array<PropertyValue, metadataPropertyCount> values;
};

struct PropertyName
{
    MetadataProperty property;
    /// In words, for people.
    const wchar_t* label;
    /// For programs.
    const wchar_t* name;
};

/// In the order of the output.
constexpr auto propertyNames = std::to_array<PropertyName>({
    {MetadataProperty::Dimensions, L"Dimensions", L"dimensions"},
    {MetadataProperty::Width, L"Width", L"width"},
    {MetadataProperty::Height, L"Height", L"height"},
    {MetadataProperty::FrameCount, L"Frames", L"frameCount"},
    {MetadataProperty::BitDepth, L"Bit depth", L"bitDepth"},
    {MetadataProperty::PixelFormat, L"Pixel type", L"pixelType"},
    {MetadataProperty::Software, L"Software", L"software"},
    {MetadataProperty::FormatDetails, L"Format details", L"formatDetails"},
});
static_assert(propertyNames.size() == metadataPropertyCount);

} // namespace Lumora
