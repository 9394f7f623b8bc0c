#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

/// A single section, how it is stored, and the picture that it gives.
struct ShownFile
{
    const char* name;
    std::vector<uint8_t> content;
    WICPixelFormatGUID format;
    UINT width;
    UINT height;
    std::vector<uint8_t> picture;
};

const std::vector<uint8_t> colors = {255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3, 40, 50, 60, 255, 254, 253};

const std::vector<ShownFile>& ShownFiles()
{
    static const std::vector<ShownFile> files = {
        {"16-bit gray", GrayStack(1), GUID_WICPixelFormat8bppGray, 4, 2, grayPictures[0]},
        {"RGB, whose channels stay in the order of the file",
         MrcFile().Size(3, 2, 1).Mode(16).Samples(colors).Build(), GUID_WICPixelFormat24bppRGB, 3, 2, colors},
        // Twice as wide a range: every second sample value shows as the next brightness.
        {"16-bit gray over 511 values",
         MrcFile().Size(2, 2, 1).Mode(6).Samples({0, 0, 200, 0, 0x90, 1, 0xFE, 1}).Build(),
         GUID_WICPixelFormat8bppGray,
         2,
         2,
         {0, 100, 200, 255}},
        // Read the other way round, a file also has its first row at the bottom.
        {"big-endian 16-bit gray",
         MrcFile()
             .Size(2, 3, 1)
             .Mode(6)
             .Order(MrcFile::ByteOrder::BigEndian)
             .Samples({0, 0, 0, 20, 0, 30, 0, 40, 0, 50, 0, 255})
             .Build(),
         GUID_WICPixelFormat8bppGray,
         2,
         3,
         {50, 255, 30, 40, 0, 20}},
        {"signed bytes, darkest at -128",
         MrcFile().Size(2, 2, 1).Mode(0).Version(20140).Samples({0x80, 0x7F, 0x00, 0xFF}).Build(),
         GUID_WICPixelFormat8bppGray,
         2,
         2,
         {0, 255, 128, 127}},
    };
    return files;
}

} // namespace

TEST(Frame, ShowsItsSection)
{
    for (const ShownFile& file : ShownFiles())
    {
        SCOPED_TRACE(file.name);
        TestStream stream{file.content};
        const ComPtr<IWICBitmapFrameDecode> frame = Frame(NewDecoder(stream), 0);
        UINT width = 0;
        UINT height = 0;
        WICPixelFormatGUID format{};
        double dpiX = 0;
        double dpiY = 0;
        EXPECT_EQ(frame->GetSize(&width, &height), S_OK);
        EXPECT_EQ(frame->GetPixelFormat(&format), S_OK);
        EXPECT_EQ(frame->GetResolution(&dpiX, &dpiY), S_OK);
        EXPECT_EQ(width, file.width);
        EXPECT_EQ(height, file.height);
        EXPECT_EQ(format, file.format);
        EXPECT_EQ(dpiX, 96.0);
        EXPECT_EQ(dpiY, 96.0);
        EXPECT_EQ(Picture(frame), file.picture);
    }
}

TEST(Frame, NeedsSomewhereToPutEachAnswer)
{
    TestStream stream{GrayStack(1)};
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(NewDecoder(stream), 0);
    UINT length = 0;
    double dpi = 0;
    EXPECT_EQ(frame->GetSize(nullptr, &length), E_INVALIDARG);
    EXPECT_EQ(frame->GetSize(&length, nullptr), E_INVALIDARG);
    EXPECT_EQ(frame->GetSize(nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(frame->GetPixelFormat(nullptr), E_INVALIDARG);
    EXPECT_EQ(frame->GetResolution(nullptr, &dpi), E_INVALIDARG);
    EXPECT_EQ(frame->GetResolution(&dpi, nullptr), E_INVALIDARG);
    EXPECT_EQ(frame->GetResolution(nullptr, nullptr), E_INVALIDARG);
}

TEST(Frame, AnswersToItsOwnInterfacesWithItself)
{
    TestStream stream{GrayStack(1)};
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(decoder, 0);
    for (const IID& iid : {IID_IUnknown, IID_IWICBitmapSource, IID_IWICBitmapFrameDecode})
    {
        void* answer = nullptr;
        EXPECT_EQ(frame->QueryInterface(iid, &answer), S_OK);
        EXPECT_EQ(answer, frame.Get());
        EXPECT_EQ(frame->Release(), 2u) << "the answer carries a reference beside ours and the decoder's";
    }
}

TEST(Frame, HasNoOtherInterface)
{
    TestStream stream{GrayStack(1)};
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(decoder, 0);
    for (const IID& iid : {IID_IWICBitmapDecoder, IID_IWICBitmap, IID_IStream, IID_IMarshal})
    {
        void* answer = Untouchable<void>();
        EXPECT_EQ(frame->QueryInterface(iid, &answer), E_NOINTERFACE);
        EXPECT_EQ(answer, nullptr);
    }
    EXPECT_EQ(frame->QueryInterface(IID_IUnknown, nullptr), E_INVALIDARG);
    EXPECT_EQ(frame->QueryInterface(IID_IMarshal, nullptr), E_INVALIDARG);
    EXPECT_EQ(frame->AddRef(), 3u) << "no failure takes a reference";
    frame->Release();
}

TEST(Frame, HasNoPaletteThumbnailMetadataOrColorContexts)
{
    TestStream stream{GrayStack(1)};
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(NewDecoder(stream), 0);
    EXPECT_EQ(frame->CopyPalette(nullptr), WINCODEC_ERR_PALETTEUNAVAILABLE);
    EXPECT_EQ(frame->GetMetadataQueryReader(nullptr), WINCODEC_ERR_UNSUPPORTEDOPERATION);
    EXPECT_EQ(frame->GetColorContexts(0, nullptr, nullptr), WINCODEC_ERR_UNSUPPORTEDOPERATION);
    EXPECT_EQ(frame->GetThumbnail(nullptr), WINCODEC_ERR_CODECNOTHUMBNAIL);

    ComPtr<IWICMetadataQueryReader> metadata;
    ComPtr<IWICBitmapSource> thumbnail;
    IWICColorContext* contexts[1] = {};
    UINT contextCount = 0;
    EXPECT_EQ(frame->GetMetadataQueryReader(metadata.Put()), WINCODEC_ERR_UNSUPPORTEDOPERATION);
    EXPECT_EQ(frame->GetColorContexts(1, contexts, &contextCount), WINCODEC_ERR_UNSUPPORTEDOPERATION);
    EXPECT_EQ(frame->GetThumbnail(thumbnail.Put()), WINCODEC_ERR_CODECNOTHUMBNAIL);
    EXPECT_FALSE(metadata);
    EXPECT_FALSE(thumbnail);
}

TEST(Frame, OutlivesItsDecoderAndItsStream)
{
    auto stream = std::make_unique<TestStream>(GrayStack(2));
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder(*stream);
    const ComPtr<IWICBitmapFrameDecode> first = Frame(decoder, 0);
    const ComPtr<IWICBitmapFrameDecode> second = Frame(decoder, 1);
    EXPECT_EQ(decoder.Detach()->Release(), 0u);
    EXPECT_EQ(stream->references, 0u);
    stream.reset();
    EXPECT_EQ(Picture(first), grayPictures[0]);
    EXPECT_EQ(Picture(second), grayPictures[1]);
}
