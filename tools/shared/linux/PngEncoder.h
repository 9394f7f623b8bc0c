#pragma once

#include "shared/Picture.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Lumora {

/// Keys and values of a PNG file, in UTF-8.
using PngTexts = std::vector<std::pair<std::string, std::string>>;

/// Writes a PNG file from the top row to the last. Throws std::runtime_error.
class PngEncoder
{
public:
    /// Begins with pixels of so many channels, as in a Picture. The file stays the caller's.
    PngEncoder(std::FILE* file, Box size, uint32_t channels, const PngTexts& texts);
    PngEncoder(const PngEncoder&) = delete;
    PngEncoder& operator=(const PngEncoder&) = delete;
    ~PngEncoder();

    void WriteRow(const uint8_t* row);
    void Finish();

private:
    struct Means;
    const std::unique_ptr<Means> means;
};

/// The size of the picture in a PNG file, which begins at the file's position. Throws std::runtime_error.
[[nodiscard]] Box PngSizeOf(std::FILE* file);

} // namespace Lumora
