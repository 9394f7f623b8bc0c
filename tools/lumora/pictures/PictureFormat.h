#pragma once

#include <cstdint>
#include <string_view>

namespace Lumora {

/// The format of pictures that are written.
struct PictureFormat
{
    static constexpr uint32_t usualQuality = 90;

    /// Otherwise PNG.
    bool isJpeg = false;
    /// Of a JPEG picture, from 1 to 100.
    uint32_t quality = usualQuality;

    [[nodiscard]] constexpr std::wstring_view Extension() const noexcept
    {
        return isJpeg ? L".jpg" : L".png";
    }

    /// The bytes with which each file of the format begins.
    [[nodiscard]] constexpr std::string_view Signature() const noexcept
    {
        return isJpeg ? "\xFF\xD8\xFF" : "\x89PNG\r\n\x1A\n";
    }

    template <class Archive>
    void Transfer(Archive& archive)
    {
        archive.Field(isJpeg);
        archive.Field(quality);
    }
};

} // namespace Lumora
