#include "lumora/pictures/PictureWriter.h"

#include "lumora/console/Failure.h"
#include "lumora/linux/Errors.h"
#include "lumora/linux/files/FileHandle.h"
#include "lumora/linux/pictures/JpegEncoder.h"
#include "lumora/linux/pictures/StandardFile.h"
#include "shared/linux/PngEncoder.h"

#include <cerrno>
#include <functional>
#include <optional>
#include <stdexcept>

namespace Lumora {

namespace {

constexpr const wchar_t* cannotWrite = L"cannot write the picture";

/// Does the work of a library, which says in an exception what goes wrong, but not why the file failed.
void Try(const wchar_t* what, std::FILE* file, const std::function<void()>& work)
try
{
    work();
}
catch (const std::runtime_error& error)
{
    const int reason = errno;
    if (std::ferror(file))
        throw Failure{std::wstring(what) + L": " + DescribeError(reason)};
    const std::string_view text = error.what();
    throw Failure{std::wstring(what) + L": " + std::wstring(text.begin(), text.end())};
}

} // namespace

struct PictureWriter::Means
{
    StandardFile file;
    std::optional<PngEncoder> png;
    std::optional<JpegEncoder> jpeg;
};

PictureWriter::PictureWriter(Imaging&, const std::wstring& path, PictureFormat format, Box size,
                             uint32_t channels)
    : file(path, format.Signature()), means(std::make_unique<Means>())
{
    WithName(cannotWrite, [this] { means->file = OpenStandardFile(file.path, "wbe"); });
    Try(cannotWrite, means->file.get(), [&] {
        if (format.isJpeg)
            means->jpeg.emplace(means->file.get(), size, channels, format.quality);
        else
            means->png.emplace(means->file.get(), size, channels, PngTexts());
    });
}

PictureWriter::~PictureWriter() = default;

void PictureWriter::WriteRows(uint32_t rows, uint32_t stride, std::span<uint8_t> pixels)
{
    Try(cannotWrite, means->file.get(), [&] {
        for (size_t row = 0; row < rows; ++row)
        {
            const uint8_t* const bytes = pixels.data() + row * stride;
            means->png ? means->png->WriteRow(bytes) : means->jpeg->WriteRow(bytes);
        }
    });
}

void PictureWriter::Finish()
{
    Try(L"cannot finish the picture", means->file.get(),
        [this] { means->png ? means->png->Finish() : means->jpeg->Finish(); });
    if (std::fclose(means->file.release()) != 0)
        throw Failure{L"cannot finish the picture: " + DescribeError(errno)};
    means.reset();
    file.Keep();
}

Box SizeOfPicture(Imaging&, const std::wstring& path)
{
    constexpr const wchar_t* what = L"cannot open the picture that is there";
    StandardFile file;
    WithName(what, [&] { file = OpenStandardFile(path, "rbe"); });
    Box size;
    Try(what, file.get(), [&] {
        const int first = std::getc(file.get());
        std::ungetc(first, file.get());
        size = first == 0xFF ? JpegSizeOf(file.get()) : PngSizeOf(file.get());
    });
    return size;
}

} // namespace Lumora
