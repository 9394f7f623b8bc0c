#pragma once

#include "core/display/DisplayPicture.h"
#include "shared/Picture.h"

#include <memory>

namespace Lumora {

/// The display picture of a frame.
class DisplayedPicture final : public Picture
{
public:
    explicit DisplayedPicture(
        std::shared_ptr<const Tav::Imaging::RawImage::DisplayPicture> displayPicture) noexcept;

    void CopyRow(uint32_t row, uint8_t* target) const override;

private:
    const std::shared_ptr<const Tav::Imaging::RawImage::DisplayPicture> picture;
};

} // namespace Lumora
