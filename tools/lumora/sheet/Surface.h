#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

namespace Lumora {

/// A part of a bitmap, in pixels.
struct Area
{
    uint32_t left = 0;
    uint32_t top = 0;
    uint32_t width = 0;
    uint32_t height = 0;
};

struct Colour
{
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
};

/// A bitmap in memory on which the system writes: rows from the top, with blue, green and red for each pixel.
/// Whatever fails throws a Failure.
class Surface
{
public:
    Surface(uint32_t width, uint32_t height);
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;
    ~Surface();

    /// The first row, with all that was written before.
    [[nodiscard]] uint8_t* Pixels() noexcept;
    /// From one row to the next, in bytes.
    [[nodiscard]] uint32_t Stride() const noexcept;

    /// Writes one line into the middle of the area, and nothing outside of it.
    void Write(std::wstring_view text, const Area& area, Colour colour);
    /// How wide the line would be, in pixels.
    [[nodiscard]] uint32_t WidthOf(std::wstring_view text) const;

private:
    struct Means;
    const std::unique_ptr<Means> means;
};

} // namespace Lumora
