#pragma once

#include "lumora/pictures/FileProperties.h"
#include "lumora/pictures/PixelBlock.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Lumora {

/// A picture that was wanted, and is there now.
struct PictureReport
{
    /// As the user knows it.
    std::wstring name;
    /// In pixels.
    uint32_t width = 0;
    uint32_t height = 0;
    /// Nothing had to be done: it was there before.
    bool isSkipped = false;

    template <class Archive>
    void Transfer(Archive& archive)
    {
        archive.Field(name);
        archive.Field(width);
        archive.Field(height);
        archive.Field(isSkipped);
    }
};

/// What has become of a FileTask.
struct FileReport
{
    /// Nothing if they were not wanted, or could not be read.
    std::optional<FileProperties> properties;
    std::optional<PixelBlock> thumbnail;
    std::vector<PictureReport> pictures;
    /// What the reader noted.
    std::vector<std::wstring> lines;
    std::optional<std::wstring> failure;
    /// The size of the file in bytes, if it is there.
    std::optional<uint64_t> fileSize;
    uint32_t milliseconds = 0;

    template <class Archive>
    void Transfer(Archive& archive)
    {
        archive.Field(properties);
        archive.Field(thumbnail);
        archive.Field(pictures);
        archive.Field(lines);
        archive.Field(failure);
        archive.Field(fileSize);
        archive.Field(milliseconds);
    }
};

} // namespace Lumora
