#pragma once

#include "metadata/Metadata.h"

#include <windows.h>

#include <wtypes.h>

#include <algorithm>
#include <array>

namespace Tav::Imaging::RawImage {

constexpr GUID imageSummary = {0x6444048F, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
constexpr GUID mediaSummary = {0x64440492, 0x4C8B, 0x11D1, {0x8B, 0x70, 0x08, 0x00, 0x36, 0xB1, 0x1A, 0x03}};
constexpr GUID documentSummary = {
    0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}};

/// A property and the key under which the shell knows it.
struct KeyedProperty
{
    PROPERTYKEY key;
    MetadataProperty property;
};

/// All properties, in the order in which the property store lists them, with the SDK's names of the keys.
constexpr std::array<KeyedProperty, metadataPropertyCount> keyedProperties = {{
    {{imageSummary, 3}, MetadataProperty::Width},            // System.Image.HorizontalSize
    {{imageSummary, 4}, MetadataProperty::Height},           // System.Image.VerticalSize
    {{imageSummary, 13}, MetadataProperty::Dimensions},      // System.Image.Dimensions
    {{imageSummary, 12}, MetadataProperty::FrameCount},      // System.Media.FrameCount
    {{mediaSummary, 37}, MetadataProperty::PixelFormat},     // media summary property 37
    {{mediaSummary, 27}, MetadataProperty::Software},        // System.Media.CreatorApplication
    {{imageSummary, 7}, MetadataProperty::BitDepth},         // System.Image.BitDepth
    {{documentSummary, 6}, MetadataProperty::FormatDetails}, // System.Comment
}};

/// Whether each property has a row.
consteval bool AreAllKeyed()
{
    for (size_t property = 0; property < metadataPropertyCount; ++property)
    {
        if (std::count_if(keyedProperties.begin(), keyedProperties.end(),
                          [property](const KeyedProperty& keyed) {
                              return keyed.property == static_cast<MetadataProperty>(property);
                          }) != 1)
            return false;
    }
    return true;
}
static_assert(AreAllKeyed());

/// The key of a property.
consteval PROPERTYKEY KeyOf(MetadataProperty property)
{
    return std::find_if(keyedProperties.begin(), keyedProperties.end(),
                        [property](const KeyedProperty& keyed) { return keyed.property == property; })
        ->key;
}

} // namespace Tav::Imaging::RawImage
