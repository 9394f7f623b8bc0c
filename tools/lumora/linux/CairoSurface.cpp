#include "lumora/console/Failure.h"
#include "lumora/console/Utf8.h"
#include "lumora/sheet/Surface.h"

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include <pango/pangocairo.h>

namespace Lumora {

namespace {

constexpr uint32_t bytesPerPixel = 3;

struct ObjectDeleter
{
    void operator()(void* object) const noexcept { g_object_unref(object); }
};
struct ContextDeleter
{
    void operator()(cairo_t* context) const noexcept { cairo_destroy(context); }
};
struct SurfaceDeleter
{
    void operator()(cairo_surface_t* surface) const noexcept { cairo_surface_destroy(surface); }
};
struct FontDeleter
{
    void operator()(PangoFontDescription* font) const noexcept { pango_font_description_free(font); }
};

using CairoSurface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;
using CairoContext = std::unique_ptr<cairo_t, ContextDeleter>;

/// How much of each pixel a text covers.
CairoSurface MakeMask(uint32_t width, uint32_t height)
{
    CairoSurface mask(
        cairo_image_surface_create(CAIRO_FORMAT_A8, static_cast<int>(width), static_cast<int>(height)));
    if (cairo_surface_status(mask.get()) != CAIRO_STATUS_SUCCESS)
        throw std::bad_alloc();
    return mask;
}

/// The colour over another one.
uint8_t Blended(uint8_t below, uint8_t above, uint32_t coverage)
{
    constexpr uint32_t whole = 255;
    return static_cast<uint8_t>((below * (whole - coverage) + above * coverage + whole / 2) / whole);
}

} // namespace

struct Surface::Means
{
    Means(uint32_t width, uint32_t height) : stride(width * bytesPerPixel), pixels(size_t{stride} * height)
    {
        const std::unique_ptr<PangoFontDescription, FontDeleter> font(
            pango_font_description_from_string("Sans"));
        constexpr int letterHeight = 12; // in pixels
        pango_font_description_set_absolute_size(font.get(), letterHeight * PANGO_SCALE);
        pango_layout_set_font_description(layout.get(), font.get());
        pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
    }

    /// Lays the text out, and returns its size in pixels.
    [[nodiscard]] PangoRectangle SetText(std::wstring_view text) const
    {
        // Pango takes valid UTF-8 only, which a name need not be.
        std::string bytes;
        for (size_t position = 0; position < text.size();)
            AppendUtf8(bytes, NextCharacter(text, position));
        pango_layout_set_text(layout.get(), bytes.data(), static_cast<int>(bytes.size()));
        PangoRectangle size = {};
        pango_layout_get_pixel_extents(layout.get(), nullptr, &size);
        return size;
    }

    const uint32_t stride;
    std::vector<uint8_t> pixels;
    const CairoSurface measure = MakeMask(1, 1);
    const CairoContext context{cairo_create(measure.get())};
    const std::unique_ptr<PangoLayout, ObjectDeleter> layout{pango_cairo_create_layout(context.get())};
};

Surface::Surface(uint32_t width, uint32_t height) : means(std::make_unique<Means>(width, height)) {}

Surface::~Surface() = default;

uint8_t* Surface::Pixels() noexcept
{
    return means->pixels.data();
}

uint32_t Surface::Stride() const noexcept
{
    return means->stride;
}

void Surface::Write(std::wstring_view text, const Area& area, Colour colour)
{
    if (area.width == 0 || area.height == 0)
        return;
    const PangoRectangle size = means->SetText(text);
    const CairoSurface mask = MakeMask(area.width, area.height);
    const CairoContext context(cairo_create(mask.get()));
    const int left = (static_cast<int>(area.width) - size.width) / 2;
    const int above = (static_cast<int>(area.height) - size.height) / 2;
    cairo_move_to(context.get(), left, above);
    pango_cairo_show_layout(context.get(), means->layout.get());
    cairo_surface_flush(mask.get());
    const uint8_t* const coverage = cairo_image_surface_get_data(mask.get());
    const auto coverageStride = static_cast<size_t>(cairo_image_surface_get_stride(mask.get()));
    for (size_t row = 0; row < area.height; ++row)
    {
        uint8_t* pixel =
            means->pixels.data() + (area.top + row) * means->stride + size_t{area.left} * bytesPerPixel;
        for (size_t column = 0; column < area.width; ++column, pixel += bytesPerPixel)
        {
            const uint32_t covered = coverage[row * coverageStride + column];
            pixel[0] = Blended(pixel[0], colour.blue, covered);
            pixel[1] = Blended(pixel[1], colour.green, covered);
            pixel[2] = Blended(pixel[2], colour.red, covered);
        }
    }
}

uint32_t Surface::WidthOf(std::wstring_view text) const
{
    return static_cast<uint32_t>(means->SetText(text).width);
}

} // namespace Lumora
