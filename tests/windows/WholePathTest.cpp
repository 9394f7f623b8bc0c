#include "registration/ClassIds.h"
#include "support/files/MrcFile.h"
#include "support/gray/GrayFiles.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/clients/TemporaryFolder.h"
#include "windows/clients/WicClient.h"
#include "windows/registry/RegisteredLumora.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <shlwapi.h>

#include <array>
#include <string>

using testing::ElementsAre;

namespace {

[[maybe_unused]] const auto* const registered = testing::AddGlobalTestEnvironment(new RegisteredLumora);

using ByteOrder = MrcFile::ByteOrder;
using Pixels = std::vector<uint8_t>;

/// A picture of 2 x 1 colour pixels.
std::vector<uint8_t> ColourFile()
{
    return MrcFile().Size(2, 1, 1).Mode(16).Samples({10, 20, 30, 200, 210, 220}).Build();
}

/// The property handler's store for a file, made as the shell makes it.
ComPtr<IPropertyStore> RegisteredStore(const std::filesystem::path& file)
{
    ComPtr<IPropertyStore> store;
    EXPECT_EQ(CoCreateInstance(CLSID_LumoraPropertyHandler, nullptr, CLSCTX_INPROC_SERVER, IID_IPropertyStore,
                               store.PutVoid()),
              S_OK);
    ComPtr<IStream> stream;
    EXPECT_EQ(SHCreateStreamOnFileEx(file.c_str(), STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr,
                                     stream.Put()),
              S_OK);
    EXPECT_EQ(Initialize(store, stream.Get()), S_OK);
    return store;
}

TEST(Discovery, FindsTheDecoderForAStream)
{
    const std::vector<uint8_t> file = GrayStack(3);
    const ComPtr<IWICBitmapDecoder> decoder = Discover(file);
    ASSERT_TRUE(decoder);
    EXPECT_EQ(FormatOf(decoder), GUID_ContainerFormatLumora);
    ASSERT_EQ(FrameCount(decoder), 3U);
    for (UINT index = 0; index < 3; ++index)
        EXPECT_EQ(Picture(Frame(decoder, index)), grayPictures[index]) << index;
}

TEST(Discovery, FindsTheDecoderForAFileOfAnyName)
{
    const TemporaryFolder folder;
    for (const wchar_t* const name : {L"stack.mrc", L"stack.txt", L"stack", L"\u30B9\u30BF\u30C3\u30AF.MRC"})
    {
        const std::filesystem::path file = folder.Write(name, GrayStack(1));
        ComPtr<IWICBitmapDecoder> decoder;
        ASSERT_EQ(Wic().CreateDecoderFromFilename(file.c_str(), nullptr, GENERIC_READ,
                                                  WICDecodeMetadataCacheOnDemand, decoder.Put()),
                  S_OK);
        EXPECT_EQ(FormatOf(decoder), GUID_ContainerFormatLumora);
        EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]);
    }
}

TEST(Discovery, FindsTheDecoderForEveryModeInBothByteOrders)
{
    for (const uint32_t mode : {0U, 1U, 2U, 6U, 12U, 16U, 101U})
    {
        for (const ByteOrder order : {ByteOrder::LittleEndian, ByteOrder::BigEndian})
        {
            SCOPED_TRACE(testing::Message() << mode << ' ' << static_cast<int>(order));
            const std::vector<uint8_t> file =
                MrcFile().Order(order).Size(6, 2, 1).Mode(mode).Samples(Pixels(size_t{6} * 2 * 4)).Build();
            EXPECT_EQ(FormatOf(Discover(file)), GUID_ContainerFormatLumora);
        }
    }
}

TEST(Discovery, FindsTheDecoderForEveryFormat)
{
    for (const GrayFile& file : GrayFiles())
    {
        SCOPED_TRACE(file.name);
        const ComPtr<IWICBitmapDecoder> decoder = Discover(file.content);
        ASSERT_TRUE(decoder);
        EXPECT_EQ(FormatOf(decoder), GUID_ContainerFormatLumora);
        ASSERT_EQ(FrameCount(decoder), file.pictures.size());
        for (UINT index = 0; index < file.pictures.size(); ++index)
            EXPECT_EQ(Picture(Frame(decoder, index)), file.pictures[index]) << index;
    }
}

TEST(Discovery, OffersNoStreamThatIsShorterThanTheHeaderThatTellsTheFormat)
{
    std::vector<uint8_t> file = GrayStack(1);
    file.resize(63);
    EXPECT_EQ(DiscoveryResult(file), WINCODEC_ERR_COMPONENTNOTFOUND);
    file.push_back(0);
    EXPECT_EQ(DiscoveryResult(file), WINCODEC_ERR_WRONGSTATE);
}

TEST(Discovery, OffersNothingThatCannotBeRead)
{
    const std::vector<uint8_t> text(2000, 'x');
    EXPECT_EQ(DiscoveryResult(text), WINCODEC_ERR_COMPONENTNOTFOUND);
    // A complex transform.
    const std::vector<uint8_t> transform = MrcFile().Size(2, 2, 1).Mode(4).Samples(Pixels(32)).Build();
    EXPECT_EQ(DiscoveryResult(transform), WINCODEC_ERR_COMPONENTNOTFOUND);
}

TEST(Discovery, LeavesWicsOwnFormatsToTheirCodecs)
{
    const std::vector<uint8_t> file = GrayStack(1);
    const ComPtr<IWICBitmapFrameDecode> gray = Frame(Discover(file), 0);
    const ComPtr<IWICBitmapSource> colour = Converted(gray.Get(), GUID_WICPixelFormat32bppBGRA);
    const ComPtr<IWICBitmapSource> opaque = Converted(colour.Get(), GUID_WICPixelFormat24bppBGR);
    for (const GUID& container : {GUID_ContainerFormatPng, GUID_ContainerFormatJpeg, GUID_ContainerFormatBmp,
                                  GUID_ContainerFormatTiff})
    {
        const std::vector<uint8_t> other = Encoded(opaque.Get(), container);
        const ComPtr<IWICBitmapDecoder> decoder = Discover(other);
        EXPECT_TRUE(FormatOf(decoder) == container) << container.Data1;
        UINT width = 0;
        UINT height = 0;
        EXPECT_EQ(Frame(decoder, 0)->GetSize(&width, &height), S_OK);
        EXPECT_EQ(width, 4U);
        EXPECT_EQ(height, 2U);
    }
}

TEST(Discovery, LeavesGifAndIconsToTheirCodecs)
{
    // One white pixel each.
    const std::vector<uint8_t> gif = {'G', 'I', 'F', '8', '9', 'a', 1,   0,    1, 0, 0x80, 0,
                                      0,   0,   0,   0,   255, 255, 255, ',',  0, 0, 0,    0,
                                      1,   0,   1,   0,   0,   2,   2,   0x4C, 1, 0, 0x3B};
    ByteWriter icon;
    icon.Put(uint16_t{0}).Put(uint16_t{1}).Put(uint16_t{1});                     // one icon
    icon.Put(uint8_t{1}).Put(uint8_t{1}).Put(uint8_t{0}).Put(uint8_t{0});        // 1 x 1
    icon.Put(uint16_t{1}).Put(uint16_t{32}).Put(uint32_t{48}).Put(uint32_t{22}); // 48 bytes at 22
    icon.Put(uint32_t{40}).Put(uint32_t{1}).Put(uint32_t{2});                    // both halves are high
    icon.Put(uint16_t{1}).Put(uint16_t{32}).PadTo(22 + 40);                      // 32 bits, plain
    icon.Put(uint32_t{0xFFFFFFFF}).Put(uint32_t{0});                             // pixel, mask

    const ComPtr<IWICBitmapDecoder> gifDecoder = Discover(gif);
    EXPECT_EQ(FormatOf(gifDecoder), GUID_ContainerFormatGif);
    EXPECT_EQ(FrameCount(gifDecoder), 1U);
    const ComPtr<IWICBitmapDecoder> iconDecoder = Discover(icon.bytes);
    EXPECT_EQ(FormatOf(iconDecoder), GUID_ContainerFormatIco);
    EXPECT_THAT(PixelsOf(Frame(iconDecoder, 0).Get(), 4), ElementsAre(255, 255, 255, 255));
}

TEST(Pictures, AreCopiedByRectangles)
{
    const std::vector<uint8_t> file = GrayStack(1);
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(Discover(file), 0);
    const WICRect middle = {1, 0, 2, 2};
    std::array<uint8_t, 6> pixels = {9, 9, 9, 9, 9, 9};
    ASSERT_EQ(frame->CopyPixels(&middle, 3, 6, pixels.data()), S_OK);
    EXPECT_THAT(pixels, ElementsAre(10, 20, 9, 50, 60, 9));
}

TEST(Pictures, PassThroughTheFormatConverter)
{
    const std::vector<uint8_t> file = GrayStack(1);
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(Discover(file), 0);
    const ComPtr<IWICBitmapSource> colour = Converted(frame.Get(), GUID_WICPixelFormat32bppBGRA);
    Pixels expected;
    for (const uint8_t gray : grayPictures[0])
        expected.insert(expected.end(), {gray, gray, gray, 255});
    EXPECT_EQ(PixelsOf(colour.Get(), 4), expected);
}

TEST(Pictures, KeepTheOrderOfTheirColours)
{
    const std::vector<uint8_t> file = ColourFile();
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(Discover(file), 0);
    EXPECT_THAT(PixelsOf(frame.Get(), 3), ElementsAre(10, 20, 30, 200, 210, 220));
    const ComPtr<IWICBitmapSource> blueFirst = Converted(frame.Get(), GUID_WICPixelFormat32bppBGRA);
    EXPECT_THAT(PixelsOf(blueFirst.Get(), 4), ElementsAre(30, 20, 10, 255, 220, 210, 200, 255));
}

TEST(Pictures, PassThroughTheScaler)
{
    // Black on the left, white on the right.
    const std::vector<uint8_t> file =
        MrcFile().Size(4, 2, 1).Mode(6).Numbers<uint16_t>({0, 0, 255, 255, 0, 0, 255, 255}).Build();
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(Discover(file), 0);
    const ComPtr<IWICBitmapSource> small = Scaled(frame.Get(), 2, 1);
    EXPECT_THAT(PixelsOf(small.Get(), 1), ElementsAre(0, 255));
}

TEST(Pictures, ComeBackFromPngUnchanged)
{
    const std::vector<uint8_t> grayFile = GrayStack(2);
    const ComPtr<IWICBitmapFrameDecode> gray = Frame(Discover(grayFile), 1);
    const std::vector<uint8_t> grayPng = Encoded(gray.Get(), GUID_ContainerFormatPng);
    const ComPtr<IWICBitmapFrameDecode> grayAgain = Frame(Discover(grayPng), 0);
    EXPECT_EQ(PixelsOf(grayAgain.Get(), 1), grayPictures[1]);

    const std::vector<uint8_t> colourFile = ColourFile();
    const ComPtr<IWICBitmapFrameDecode> colour = Frame(Discover(colourFile), 0);
    const std::vector<uint8_t> colourPng = Encoded(colour.Get(), GUID_ContainerFormatPng);
    const ComPtr<IWICBitmapFrameDecode> colourAgain = Frame(Discover(colourPng), 0);
    const ComPtr<IWICBitmapSource> blueFirst = Converted(colourAgain.Get(), GUID_WICPixelFormat32bppBGRA);
    EXPECT_THAT(PixelsOf(blueFirst.Get(), 4), ElementsAre(30, 20, 10, 255, 220, 210, 200, 255));
}

using TextGetter = HRESULT (STDMETHODCALLTYPE IWICBitmapDecoderInfo::*)(UINT, WCHAR*, UINT*);

std::wstring TextOf(IWICBitmapDecoderInfo* info, TextGetter getter)
{
    UINT length = 0;
    std::array<WCHAR, 256> text{};
    EXPECT_EQ((info->*getter)(static_cast<UINT>(text.size()), text.data(), &length), S_OK);
    return text.data();
}

TEST(DecoderInfo, TellsWhatIsRegistered)
{
    const std::vector<uint8_t> file = GrayStack(1);
    ComPtr<IWICBitmapDecoderInfo> info;
    ASSERT_EQ(Discover(file)->GetDecoderInfo(info.Put()), S_OK);

    GUID id{};
    EXPECT_EQ(info->GetCLSID(&id), S_OK);
    EXPECT_EQ(id, CLSID_LumoraDecoder);
    EXPECT_EQ(info->GetContainerFormat(&id), S_OK);
    EXPECT_EQ(id, GUID_ContainerFormatLumora);
    EXPECT_EQ(info->GetVendorGUID(&id), S_OK);
    EXPECT_EQ(id, GUID_VendorLumora);
    EXPECT_EQ(TextOf(info.Get(), &IWICBitmapDecoderInfo::GetFriendlyName), L"Lumora decoder");
    EXPECT_EQ(TextOf(info.Get(), &IWICBitmapDecoderInfo::GetAuthor), L"Lumora");
    EXPECT_EQ(TextOf(info.Get(), &IWICBitmapDecoderInfo::GetMimeTypes),
              L"image/x-mrc,image/x-digital-micrograph,application/x-hdf5,image/x-ser,image/x-emi,"
              L"application/x-npy,image/x-tav-raw,image/x-tav-bin,image/x-lattice");
    EXPECT_EQ(TextOf(info.Get(), &IWICBitmapDecoderInfo::GetFileExtensions),
              L".mrc,.mrcs,.preali,.map,.st,.ali,.rec,.dm3,.dm4,.emd,.h5,.hdf5,.ser,.emi,.npy,.lattice");

    std::array<GUID, 4> formats{};
    UINT count = 0;
    EXPECT_EQ(info->GetPixelFormats(static_cast<UINT>(formats.size()), formats.data(), &count), S_OK);
    ASSERT_EQ(count, 2U);
    EXPECT_TRUE(formats[0] == GUID_WICPixelFormat8bppGray || formats[1] == GUID_WICPixelFormat8bppGray);
    EXPECT_TRUE(formats[0] == GUID_WICPixelFormat24bppRGB || formats[1] == GUID_WICPixelFormat24bppRGB);

    BOOL matches = FALSE;
    EXPECT_EQ(info->MatchesPattern(StreamOver(file).Get(), &matches), S_OK);
    EXPECT_TRUE(matches);
}

TEST(Properties, ComeFromTheRegisteredHandler)
{
    const TemporaryFolder folder;
    const std::filesystem::path file =
        folder.Write(L"stack.mrc", MrcFile()
                                       .Size(4, 2, 3)
                                       .Mode(6)
                                       .Version(20140)
                                       .ExtendedHeader("TAV ", AcquisitionHeader(5, "TAV Ardix", "2.10"))
                                       .Samples(Pixels(size_t{4} * 2 * 3 * 2))
                                       .Build());
    EXPECT_THAT(ValuesOf(RegisteredStore(file)),
                ElementsAre(PropertyValue(4UL), PropertyValue(2UL), PropertyValue(L"4 x 2 x 3"),
                            PropertyValue(3UL), PropertyValue(L"UInt16"), PropertyValue(L"Ardix 2.10"),
                            PropertyValue(16UL), PropertyValue(L"MRC2014 Mode 6")));
}

TEST(Properties, TellTheSameOfEveryFormat)
{
    const TemporaryFolder folder;
    for (const GrayFile& file : GrayFiles())
    {
        SCOPED_TRACE(file.name);
        const ULONG width = file.width;
        const auto height = static_cast<ULONG>(file.pictures[0].size() / width);
        const auto frames = static_cast<ULONG>(file.pictures.size());
        const std::wstring size = std::to_wstring(width) + L" x " + std::to_wstring(height);
        EXPECT_THAT(
            ValuesOf(RegisteredStore(folder.Write(file.name, file.content))),
            ElementsAre(PropertyValue(width), PropertyValue(height),
                        PropertyValue(frames > 1 ? size + L" x " + std::to_wstring(frames) : size),
                        PropertyValue(frames), PropertyValue(L"UInt16"), PropertyValue(file.software),
                        PropertyValue(16UL),
                        file.formatDetails.empty() ? PropertyValue() : PropertyValue(file.formatDetails)));
    }
}

} // namespace
