#pragma once

#include "shared/Picture.h"

#include <cstdint>
#include <cstdio>
#include <memory>

namespace Lumora {

/// Writes a JPEG file from the top row to the last. Throws std::runtime_error.
class JpegEncoder
{
public:
    /// Begins with pixels of so many channels, as in a Picture. The file stays the caller's.
    JpegEncoder(std::FILE* file, Box size, uint32_t channels, uint32_t quality);
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;
    ~JpegEncoder();

    void WriteRow(const uint8_t* row);
    void Finish();

private:
    struct Means;
    const std::unique_ptr<Means> means;
};

/// The size of the picture in a JPEG file, which begins at the file's position. Throws std::runtime_error.
[[nodiscard]] Box JpegSizeOf(std::FILE* file);

} // namespace Lumora
