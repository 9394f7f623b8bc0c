#include "thumbnailer/PngFile.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <png.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumora {

using Tav::Imaging::RawImage::BytesPerPixel;
using Tav::Imaging::RawImage::DisplayPicture;
using Tav::Imaging::RawImage::PixelType;

namespace {

struct FileCloser
{
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// A new file beside the one with this path, which is deleted unless it is kept.
class UnfinishedFile
{
public:
    explicit UnfinishedFile(const std::string& finalPath) : target(finalPath), path(finalPath + ".XXXXXX")
    {
        const int descriptor = mkostemp(path.data(), O_CLOEXEC);
        if (descriptor < 0)
            throw std::system_error(errno, std::generic_category(), "cannot write " + target);
        file.reset(fdopen(descriptor, "wb"));
        if (!file)
            throw std::system_error(errno, std::generic_category(), "cannot write " + target);
    }
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile()
    {
        if (!path.empty())
            unlink(path.c_str());
    }

    void Keep()
    {
        // Others could not read it otherwise: a temporary file is its owner's alone.
        const mode_t mask = umask(0);
        umask(mask);
        const bool isWritten =
            fchmod(fileno(file.get()), 0666 & ~mask) == 0 && std::fclose(file.release()) == 0;
        if (!isWritten || std::rename(path.c_str(), target.c_str()) != 0)
            throw std::system_error(errno, std::generic_category(), "cannot write " + target);
        path.clear();
    }

    File file;

private:
    const std::string target;
    std::string path;
};

/// libpng reports errors through this function, which must not return. It is called through frames of libpng,
/// which are compiled to let exceptions pass.
[[noreturn]] void Fail(png_structp, png_const_charp message)
{
    throw std::runtime_error(std::string("libpng: ") + message);
}

/// What libpng needs for one file.
class PngWriter
{
public:
    PngWriter() : png(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, Fail, nullptr))
    {
        if (png)
            info = png_create_info_struct(png);
        if (!info)
            throw std::bad_alloc();
    }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;
    ~PngWriter() { png_destroy_write_struct(&png, &info); }

    void Write(std::FILE* file, const DisplayPicture& picture, const PngTexts& texts)
    {
        png_init_io(png, file);
        png_set_IHDR(png, info, picture.width, picture.height, 8,
                     picture.format == PixelType::RGB24 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        std::vector<png_text> chunks;
        for (const auto& [key, value] : texts)
        {
            png_text& chunk = chunks.emplace_back();
            chunk.compression = PNG_TEXT_COMPRESSION_NONE;
            chunk.key = const_cast<char*>(key.c_str());
            chunk.text = const_cast<char*>(value.c_str());
        }
        png_set_text(png, info, chunks.data(), static_cast<int>(chunks.size()));
        png_write_info(png, info);
        const size_t rowBytes = size_t{BytesPerPixel(picture.format)} * picture.width;
        for (size_t row = 0; row < picture.height; ++row)
            png_write_row(png, picture.pixels.data() + row * rowBytes);
        png_write_end(png, nullptr);
    }

private:
    png_structp png;
    png_infop info = nullptr;
};

} // namespace

void WritePng(const std::string& path, const DisplayPicture& picture, const PngTexts& texts)
{
    UnfinishedFile unfinished(path);
    PngWriter().Write(unfinished.file.get(), picture, texts);
    unfinished.Keep();
}

} // namespace Lumora
