#include "lumora/doctor/OpeningChecks.h"

#include "lumora/console/Failure.h"
#include "lumora/pictures/DecoderLines.h"
#include "lumora/pictures/PictureFile.h"

#include <algorithm>

namespace Lumora {

namespace {

/// Decodes the first frame in the size of larger thumbnails. Returns the number of frames and the frame's own
/// size, in words.
std::wstring DecodePicture(Imaging& imaging, const std::wstring& path)
{
    constexpr uint32_t thumbnailSide = 256;
    const PictureFile file(imaging, path);
    const std::unique_ptr<Picture> picture = file.Frame(0, std::nullopt);
    const Box size = {picture->width, picture->height};
    static_cast<void>(CopyOf(*file.Frame(0, Box{thumbnailSide, thumbnailSide})));
    const uint32_t count = file.FrameCount();
    return std::to_wstring(count) + (count == 1 ? L" frame of " : L" frames, the first of ") +
           std::to_wstring(size.width) + L" x " + std::to_wstring(size.height) + L" pixels";
}

/// Does one thing with the file, which may fail. Returns the lines that the reader wrote.
template <typename Work>
std::vector<std::wstring> Try(const wchar_t* what, const SourceFile& file, const Work& work,
                              DecoderLines& decoderLines, Diagnosis& diagnosis)
{
    std::wstring result;
    const std::optional<std::wstring> failure = FailureOf([&] { result = work(); });
    std::vector<std::wstring> lines = decoderLines.Take();
    if (!failure)
        diagnosis.Ok(what, result);
    else
        diagnosis.Problem(
            Cause::File, what, *failure,
            file.name + L": " + *failure +
                (lines.empty() ? L"."
                               : L"; the reader noted \"" + lines.back() +
                                     L"\". The file is damaged, or of a kind that Lumora does not read."));
    return lines;
}

} // namespace

void CheckOpening(Imaging& imaging, const SourceFile& file, Diagnosis& diagnosis)
{
    DecoderLines decoderLines;
    const auto decode = [&] { return DecodePicture(imaging, file.path); };
    std::vector<std::wstring> lines = Try(L"picture", file, decode, decoderLines, diagnosis);
    const std::vector<std::wstring> more = Try(
        L"properties", file,
        [&] {
            static_cast<void>(ReadProperties(imaging, file.path));
            return L"properties can be read";
        },
        decoderLines, diagnosis);
    // Each opening writes the same lines.
    for (const std::wstring& line : more)
    {
        if (std::find(lines.begin(), lines.end(), line) == lines.end())
            lines.push_back(line);
    }
    for (const std::wstring& line : lines)
        diagnosis.Note(L"reader", line);
}

} // namespace Lumora
