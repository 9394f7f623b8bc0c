#include "lumora/linux/pictures/JpegEncoder.h"

#include <array>
#include <stdexcept>
#include <string>

#include <jpeglib.h>

namespace Lumora {

namespace {

/// libjpeg reports errors through this function, which must not return. The exception passes through frames
/// of libjpeg, which hold nothing but what is freed with its object.
[[noreturn]] void Fail(j_common_ptr library)
{
    std::array<char, JMSG_LENGTH_MAX> text = {};
    library->err->format_message(library, text.data());
    throw std::runtime_error(std::string("libjpeg: ") + text.data());
}

jpeg_error_mgr* SetErrors(jpeg_error_mgr& errors)
{
    jpeg_std_error(&errors);
    errors.error_exit = Fail;
    errors.output_message = [](j_common_ptr) {};
    return &errors;
}

} // namespace

struct JpegEncoder::Means
{
    Means()
    {
        library.err = SetErrors(errors);
        jpeg_create_compress(&library);
    }
    Means(const Means&) = delete;
    Means& operator=(const Means&) = delete;
    ~Means() { jpeg_destroy_compress(&library); }

    jpeg_error_mgr errors = {};
    jpeg_compress_struct library = {};
};

JpegEncoder::JpegEncoder(std::FILE* file, Box size, uint32_t channels, uint32_t quality)
    : means(std::make_unique<Means>())
{
    jpeg_compress_struct& library = means->library;
    jpeg_stdio_dest(&library, file);
    library.image_width = size.width;
    library.image_height = size.height;
    library.input_components = static_cast<int>(channels);
    library.in_color_space = channels == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
    jpeg_set_defaults(&library);
    jpeg_set_quality(&library, static_cast<int>(quality), TRUE);
    jpeg_start_compress(&library, TRUE);
}

JpegEncoder::~JpegEncoder() = default;

void JpegEncoder::WriteRow(const uint8_t* row)
{
    // The library only reads it.
    JSAMPROW rows[] = {const_cast<JSAMPROW>(row)};
    jpeg_write_scanlines(&means->library, rows, 1);
}

void JpegEncoder::Finish()
{
    jpeg_finish_compress(&means->library);
}

Box JpegSizeOf(std::FILE* file)
{
    struct Reader
    {
        Reader()
        {
            library.err = SetErrors(errors);
            jpeg_create_decompress(&library);
        }
        ~Reader() { jpeg_destroy_decompress(&library); }

        jpeg_error_mgr errors = {};
        jpeg_decompress_struct library = {};
    } reader;
    jpeg_stdio_src(&reader.library, file);
    jpeg_read_header(&reader.library, TRUE);
    return {reader.library.image_width, reader.library.image_height};
}

} // namespace Lumora
