#include "lumora/windows/doctor/OpeningChecks.h"

#include "lumora/console/Failure.h"
#include "lumora/pictures/DecoderLines.h"
#include "lumora/pictures/PictureFile.h"
#include "lumora/pictures/PropertyReader.h"
#include "lumora/windows/pictures/ImagingFactory.h"
#include "registration/ClassIds.h"

#include <windows.h>

#include <propsys.h>

#include <algorithm>

namespace Lumora {

namespace {

template <typename Interface>
void CheckClass(const wchar_t* what, REFCLSID classId, REFIID interfaceId, Scope scope, Diagnosis& diagnosis)
{
    ComPtr<Interface> object;
    const HRESULT result =
        CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, interfaceId, object.PutVoid());
    if (SUCCEEDED(result))
    {
        diagnosis.Ok(what, L"starts");
        return;
    }
    const std::wstring why = DescribeResult(result);
    diagnosis.Problem(Cause::Class, what, L"cannot be started: " + why,
                      scope == Scope::User && result == REGDB_E_CLASSNOTREG
                          ? L"The registration for you does not count for a program with administrator "
                            L"rights: run \"lumora doctor\" without them."
                          : std::wstring(L"Windows cannot start Lumora's ") + what + L": " + why + L'.');
}

/// Decodes the first frame in the size of Explorer's larger thumbnails. Returns the number of frames and the
/// frame's own size, in words.
std::wstring DecodePicture(IWICImagingFactory& factory, const std::wstring& path)
{
    constexpr uint32_t thumbnailSide = 256;
    constexpr UINT stride = thumbnailSide * 4;
    const PictureFile picture(factory, path);
    UINT width = 0;
    UINT height = 0;
    Require(picture.Frame(0, std::nullopt)->GetSize(&width, &height), L"cannot ask for the frame's size");
    std::vector<BYTE> pixels(size_t{stride} * thumbnailSide);
    Require(picture.Frame(0, Box{thumbnailSide, thumbnailSide})
                ->CopyPixels(nullptr, stride, static_cast<UINT>(pixels.size()), pixels.data()),
            L"cannot decode the frame");
    const uint32_t count = picture.FrameCount();
    return std::to_wstring(count) + (count == 1 ? L" frame of " : L" frames, the first of ") +
           std::to_wstring(width) + L" x " + std::to_wstring(height) + L" pixels";
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

ComPtr<IWICImagingFactory> CheckClasses(Scope scope, Diagnosis& diagnosis)
{
    CheckClass<IWICBitmapDecoder>(L"decoder", CLSID_LumoraDecoder, IID_IWICBitmapDecoder, scope, diagnosis);
    CheckClass<IPropertyStore>(L"property handler", CLSID_LumoraPropertyHandler, IID_IPropertyStore, scope,
                               diagnosis);
    ComPtr<IWICImagingFactory> factory;
    if (const auto failure = FailureOf([&factory] { factory = MakeImagingFactory(); }))
        diagnosis.Problem(Cause::Class, L"WIC", *failure,
                          L"WIC does not find the decoder: " + *failure + L'.');
    else
        diagnosis.Ok(L"WIC", L"knows the decoder");
    return factory;
}

void CheckOpening(IWICImagingFactory& factory, const SourceFile& file, Diagnosis& diagnosis)
{
    DecoderLines decoderLines;
    const auto decode = [&] { return DecodePicture(factory, file.path); };
    std::vector<std::wstring> lines = Try(L"picture", file, decode, decoderLines, diagnosis);
    const std::vector<std::wstring> more = Try(
        L"properties", file,
        [&] {
            static_cast<void>(ReadProperties(file.path));
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
