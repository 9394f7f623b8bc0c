#include "platform/ComPtr.h"
#include "registration/Formats.h"
#include "windows/gauntlet/FilesBelow.h"
#include "windows/walk/shell/ShellSteps.h"
#include "windows/walk/shell/ThumbnailMatch.h"

#include <windows.h>

#include <shlobj.h>
#include <shobjidl.h>

#include <cstdio>
#include <stdexcept>

namespace {

constexpr LONG thumbnailSide = 256;

/// A bitmap of the shell, deleted when it is no longer needed.
class Bitmap
{
public:
    Bitmap() = default;
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
    ~Bitmap() { DeleteObject(handle); }

    HBITMAP handle = nullptr;
};

HRESULT GetThumbnail(const std::filesystem::path& file, Bitmap& bitmap)
{
    ComPtr<IShellItemImageFactory> item;
    const HRESULT result =
        SHCreateItemFromParsingName(file.c_str(), nullptr, IID_IShellItemImageFactory, item.PutVoid());
    if (FAILED(result))
        return result;
    return item->GetImage({thumbnailSide, thumbnailSide}, SIIGBF_THUMBNAILONLY, &bitmap.handle);
}

/// What is wrong with a thumbnail, or nothing.
std::string Difference(const std::filesystem::path& picture, HBITMAP thumbnail)
{
    const ComPtr<IWICImagingFactory> factory = ImagingFactory();
    ComPtr<IWICBitmap> shown;
    const HRESULT result =
        factory->CreateBitmapFromHBITMAP(thumbnail, nullptr, WICBitmapIgnoreAlpha, shown.Put());
    if (FAILED(result))
        return "WIC cannot read the thumbnail: " + HexCode(static_cast<unsigned long>(result));
    const ThumbnailMatch match = Match(factory.Get(), shown.Get(), PictureFile(factory.Get(), picture).Get());
    if (match.IsSamePicture())
        return {};
    char text[64];
    std::snprintf(text, sizeof(text), "%s, mean difference %.1f of 255",
                  match.hasSameShape ? "same shape" : "another shape", match.difference);
    return text;
}

void CheckThumbnail(Report& report, const Host& host, const std::filesystem::path& sample,
                    const std::filesystem::path& picture)
{
    const std::string step = "thumbnail of " + Utf8(sample.filename());
    Bitmap thumbnail;
    const HRESULT result = GetThumbnail(sample, thumbnail);
    const std::string none = "there is none: " + HexCode(static_cast<unsigned long>(result));
    if (!Lumora::RegisteredExtension(sample.extension().wstring()) && !host.isWine)
    {
        report.Add(FAILED(result) ? Verdict::Passed : Verdict::Look, step + ", which must have none",
                   {FAILED(result) ? none : "there is one; another program may have made it"});
        return;
    }
    const std::string difference = FAILED(result) ? none : Difference(picture, thumbnail.handle);
    if (difference.empty())
        report.Add(Verdict::Passed, step);
    else if (host.isWine)
        report.Add(Verdict::NotChecked, step, {"Wine's shell makes no thumbnails: " + difference});
    else
        report.Add(Verdict::Differs, step, {difference});
}

} // namespace

void CheckThumbnails(Report& report, const Host& host, const std::filesystem::path& samples,
                     const std::filesystem::path& pictures)
{
    for (const std::filesystem::path& sample : FilesBelow({samples.wstring()}))
        CheckThumbnail(report, host, sample, pictures / sample.stem().concat(".png"));
}
