#include "lumora/pictures/PictureWriter.h"

#include "lumora/windows/Results.h"
#include "lumora/windows/pictures/WicImaging.h"

namespace Lumora {

namespace {

constexpr const wchar_t* cannotWrite = L"cannot write the picture";

void SetQuality(IPropertyBag2& options, uint32_t quality)
{
    std::wstring name = L"ImageQuality";
    PROPBAG2 option = {};
    option.pstrName = name.data();
    VARIANT value = {};
    value.vt = VT_R4;
    value.fltVal = static_cast<float>(quality) / 100;
    Require(options.Write(1, &option, &value), L"cannot set the quality of the picture");
}

} // namespace

struct PictureWriter::Means
{
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapEncoder> encoder;
    ComPtr<IWICBitmapFrameEncode> frame;
};

PictureWriter::PictureWriter(Imaging& imaging, const std::wstring& path, PictureFormat format, Box size,
                             uint32_t channels)
    : file(path, format.Signature()), means(std::make_unique<Means>())
{
    IWICImagingFactory& factory = imaging.means->Factory();
    Require(factory.CreateStream(means->stream.Put()), L"cannot make a stream");
    Require(means->stream->InitializeFromFilename(file.path.c_str(), GENERIC_WRITE), cannotWrite);
    Require(factory.CreateEncoder(format.isJpeg ? GUID_ContainerFormatJpeg : GUID_ContainerFormatPng, nullptr,
                                  means->encoder.Put()),
            L"cannot start WIC's encoder");
    Require(means->encoder->Initialize(means->stream.Get(), WICBitmapEncoderNoCache), cannotWrite);
    ComPtr<IPropertyBag2> options;
    Require(means->encoder->CreateNewFrame(means->frame.Put(), options.Put()), cannotWrite);
    if (format.isJpeg)
        SetQuality(*options.Get(), format.quality);
    Require(means->frame->Initialize(options.Get()), cannotWrite);
    Require(means->frame->SetSize(size.width, size.height), cannotWrite);
    const WICPixelFormatGUID wanted =
        channels == 1 ? GUID_WICPixelFormat8bppGray : GUID_WICPixelFormat24bppBGR;
    WICPixelFormatGUID encoded = wanted;
    Require(means->frame->SetPixelFormat(&encoded), cannotWrite);
    if (encoded != wanted)
        throw Failure{L"WIC's encoder does not take pixels of this format"};
}

PictureWriter::~PictureWriter() = default;

void PictureWriter::WriteRows(uint32_t rows, uint32_t stride, std::span<uint8_t> pixels)
{
    Require(means->frame->WritePixels(rows, stride, static_cast<UINT>(pixels.size()), pixels.data()),
            cannotWrite);
}

void PictureWriter::Finish()
{
    Require(means->frame->Commit(), L"cannot finish the picture");
    Require(means->encoder->Commit(), L"cannot finish the picture");
    means.reset();
    file.Keep();
}

Box SizeOfPicture(Imaging& imaging, const std::wstring& path)
{
    ComPtr<IWICBitmapDecoder> decoder;
    Require(imaging.means->Factory().CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                                               WICDecodeMetadataCacheOnDemand, decoder.Put()),
            L"cannot open the picture that is there");
    ComPtr<IWICBitmapFrameDecode> frame;
    Require(decoder->GetFrame(0, frame.Put()), L"cannot open the picture that is there");
    Box size;
    Require(frame->GetSize(&size.width, &size.height), L"cannot ask for the picture's size");
    return size;
}

} // namespace Lumora
