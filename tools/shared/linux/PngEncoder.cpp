#include "shared/linux/PngEncoder.h"

#include <new>
#include <stdexcept>

#include <png.h>

namespace Lumora {

namespace {

/// libpng reports errors through this function, which must not return. It is called through frames of libpng,
/// which are compiled to let exceptions pass.
[[noreturn]] void Fail(png_structp, png_const_charp message)
{
    throw std::runtime_error(std::string("libpng: ") + message);
}

/// Warnings are about the colours of others, which do not matter here.
void Ignore(png_structp, png_const_charp) {}

/// What libpng needs to read one file.
class PngReader
{
public:
    PngReader() : png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, Ignore))
    {
        if (png)
            info = png_create_info_struct(png);
        if (!info)
            throw std::bad_alloc();
    }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;
    ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }

    [[nodiscard]] Box ReadSize(std::FILE* file)
    {
        png_init_io(png, file);
        png_read_info(png, info);
        return {png_get_image_width(png, info), png_get_image_height(png, info)};
    }

private:
    png_structp png;
    png_infop info = nullptr;
};

} // namespace

/// What libpng needs to write one file.
struct PngEncoder::Means
{
    Means() : png(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, Ignore))
    {
        if (png)
            info = png_create_info_struct(png);
        if (!info)
            throw std::bad_alloc();
    }
    Means(const Means&) = delete;
    Means& operator=(const Means&) = delete;
    ~Means() { png_destroy_write_struct(&png, &info); }

    png_structp png;
    png_infop info = nullptr;
};

PngEncoder::PngEncoder(std::FILE* file, Box size, uint32_t channels, const PngTexts& texts)
    : means(std::make_unique<Means>())
{
    png_init_io(means->png, file);
    png_set_IHDR(means->png, means->info, size.width, size.height, 8,
                 channels == 1 ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    std::vector<png_text> chunks;
    for (const auto& [key, value] : texts)
    {
        png_text& chunk = chunks.emplace_back();
        chunk.compression = PNG_TEXT_COMPRESSION_NONE;
        chunk.key = const_cast<char*>(key.c_str());
        chunk.text = const_cast<char*>(value.c_str());
    }
    png_set_text(means->png, means->info, chunks.data(), static_cast<int>(chunks.size()));
    png_write_info(means->png, means->info);
    if (channels != 1)
        png_set_bgr(means->png);
}

PngEncoder::~PngEncoder() = default;

void PngEncoder::WriteRow(const uint8_t* row)
{
    png_write_row(means->png, row);
}

void PngEncoder::Finish()
{
    png_write_end(means->png, nullptr);
}

Box PngSizeOf(std::FILE* file)
{
    return PngReader().ReadSize(file);
}

} // namespace Lumora
