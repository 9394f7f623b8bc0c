#pragma once

#include "windows/clients/TemporaryFolder.h"

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// A PNG file as a client of WIC sees it. The test fails, and the picture has no pixels, when it is none.
class PngPicture
{
public:
    explicit PngPicture(const std::filesystem::path& file);
    PngPicture(const TemporaryFolder& folder, const std::string& name) : PngPicture(folder.Path() / name) {}

    /// Blue, green and red of each pixel of a part, which must be inside the picture.
    [[nodiscard]] std::vector<uint8_t> Part(uint32_t left, uint32_t top, uint32_t partWidth,
                                            uint32_t partHeight) const;

    UINT width = 0;
    UINT height = 0;
    /// Blue, green and red of each pixel.
    std::vector<uint8_t> pixels;
};
