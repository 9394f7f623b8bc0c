#pragma once

#include "lumora/arguments/FrameSelection.h"
#include "lumora/pictures/PictureFormat.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Lumora {

/// The pictures that are to be written of a file.
struct PictureOrder
{
    /// Their name as the user knows it, up to the number of the frame and the extension.
    std::wstring target;
    FrameSelection frames;
    PictureFormat format;
    /// Scale down where the longer side has more pixels.
    std::optional<uint32_t> longerSide;
    /// All frames become one picture, with so many of them side by side.
    bool isMontage = false;
    std::optional<uint32_t> columns;
    /// Pictures that are newer than the file stay.
    bool skipsExisting = false;

    template <class Archive>
    void Transfer(Archive& archive)
    {
        archive.Field(target);
        archive.Field(frames);
        archive.Field(format);
        archive.Field(longerSide);
        archive.Field(isMontage);
        archive.Field(columns);
        archive.Field(skipsExisting);
    }
};

/// What is to be done with one file.
struct FileTask
{
    /// Full, for opening it.
    std::wstring path;
    bool wantsProperties = false;
    /// Hand over the first frame, scaled down where its longer side has more pixels.
    std::optional<uint32_t> thumbnailSide;
    std::optional<PictureOrder> pictures;

    template <class Archive>
    void Transfer(Archive& archive)
    {
        archive.Field(path);
        archive.Field(wantsProperties);
        archive.Field(thumbnailSide);
        archive.Field(pictures);
    }
};

} // namespace Lumora
