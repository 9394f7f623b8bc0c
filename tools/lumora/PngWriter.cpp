#include "PngWriter.h"

#include "Failure.h"
#include "platform/ComPtr.h"

namespace Lumora {

namespace {

/// A file under a name of its own while it is being written; deleted unless it is kept.
class UnfinishedFile
{
public:
    explicit UnfinishedFile(const std::wstring& finalPath)
        : path(finalPath + L'.' + std::to_wstring(GetCurrentProcessId()) + L".part"), target(finalPath)
    {}
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile() { DeleteFileW(path.c_str()); }

    void Keep() const
    {
        if (!MoveFileExW(path.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING))
            throw Failure{L"cannot name the picture: " + DescribeError(GetLastError())};
    }

    const std::wstring path;

private:
    const std::wstring target;
};

void Encode(IWICImagingFactory& factory, IWICBitmapSource& picture, const std::wstring& path)
{
    ComPtr<IWICStream> stream;
    Require(factory.CreateStream(stream.Put()), L"cannot make a stream");
    Require(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE), L"cannot write the picture");
    ComPtr<IWICBitmapEncoder> encoder;
    Require(factory.CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.Put()),
            L"cannot start WIC's PNG encoder");
    Require(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache), L"cannot write the picture");
    ComPtr<IWICBitmapFrameEncode> frame;
    Require(encoder->CreateNewFrame(frame.Put(), nullptr), L"cannot write the picture");
    Require(frame->Initialize(nullptr), L"cannot write the picture");

    UINT width = 0;
    UINT height = 0;
    WICPixelFormatGUID sourceFormat = {};
    Require(picture.GetSize(&width, &height), L"cannot ask for the picture's size");
    Require(picture.GetPixelFormat(&sourceFormat), L"cannot ask for the picture's pixel format");
    Require(frame->SetSize(width, height), L"cannot write the picture");
    WICPixelFormatGUID format = sourceFormat;
    Require(frame->SetPixelFormat(&format), L"cannot write the picture");

    // PNG encoders differ in the colour formats that they take directly.
    ComPtr<IWICBitmapSource> encodable = ComPtr<IWICBitmapSource>::Share(&picture);
    if (format != sourceFormat)
        Require(WICConvertBitmapSource(format, &picture, encodable.Put()), L"cannot convert the picture");
    Require(frame->WriteSource(encodable.Get(), nullptr), L"cannot write the picture");
    Require(frame->Commit(), L"cannot finish the picture");
    Require(encoder->Commit(), L"cannot finish the picture");
}

} // namespace

void WritePng(IWICImagingFactory& factory, IWICBitmapSource& picture, const std::wstring& path)
{
    const UnfinishedFile file(path);
    Encode(factory, picture, file.path);
    file.Keep();
}

} // namespace Lumora
