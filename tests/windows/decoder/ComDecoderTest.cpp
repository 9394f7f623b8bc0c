#include "registration/ClassIds.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"

#include <gtest/gtest.h>

#include <propsys.h>

#include <vector>

TEST(Decoder, AnswersToItsOwnInterfacesWithItself)
{
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    for (const IID& iid : {IID_IUnknown, IID_IWICBitmapDecoder})
    {
        void* answer = nullptr;
        EXPECT_EQ(decoder->QueryInterface(iid, &answer), S_OK);
        EXPECT_EQ(answer, decoder.Get());
        EXPECT_EQ(decoder->Release(), 1u) << "the answer carries a reference";
    }
}

TEST(Decoder, HasNoOtherInterface)
{
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    for (const IID& iid : {IID_IWICBitmapFrameDecode, IID_IWICBitmapSource, IID_IInitializeWithStream,
                           IID_IPropertyStore, IID_IClassFactory, IID_IMarshal})
    {
        void* answer = Untouchable<void>();
        EXPECT_EQ(decoder->QueryInterface(iid, &answer), E_NOINTERFACE);
        EXPECT_EQ(answer, nullptr);
    }
    EXPECT_EQ(decoder->QueryInterface(IID_IUnknown, nullptr), E_INVALIDARG);
    EXPECT_EQ(decoder->QueryInterface(IID_IMarshal, nullptr), E_INVALIDARG);
    EXPECT_EQ(decoder->AddRef(), 2u) << "no failure takes a reference";
    decoder->Release();
}

TEST(Decoder, ClaimsToDecodeSomeImagesOfAnyStreamWithoutLookingAtIt)
{
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    for (const std::vector<uint8_t>& content : {GrayStack(1), std::vector<uint8_t>(100, 'x'), {}})
    {
        TestStream stream{content};
        DWORD capability = 0xFFFFFFFF;
        EXPECT_EQ(decoder->QueryCapability(&stream, &capability), S_OK);
        EXPECT_EQ(capability, 4u);
        EXPECT_EQ(Calls(stream), 0u);
        EXPECT_EQ(stream.references, 0u);
    }
}

TEST(Decoder, NeedsAStreamAndAPlaceForTheCapability)
{
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    TestStream stream{GrayStack(1)};
    DWORD capability = 0;
    EXPECT_EQ(decoder->QueryCapability(nullptr, &capability), E_INVALIDARG);
    EXPECT_EQ(decoder->QueryCapability(&stream, nullptr), E_INVALIDARG);
    EXPECT_EQ(decoder->QueryCapability(nullptr, nullptr), E_INVALIDARG);
}

TEST(Decoder, TellsItsContainerFormatAtAnyTime)
{
    TestStream stream{GrayStack(1)};
    for (const ComPtr<IWICBitmapDecoder>& decoder : {NewDecoder(), NewDecoder(stream)})
    {
        GUID format{};
        EXPECT_EQ(decoder->GetContainerFormat(&format), S_OK);
        EXPECT_EQ(format, GUID_ContainerFormatLumora);
        EXPECT_EQ(decoder->GetContainerFormat(nullptr), E_INVALIDARG);
    }
}

TEST(Decoder, HasNoPalettePreviewThumbnailMetadataOrColorContexts)
{
    TestStream stream{GrayStack(1)};
    for (const ComPtr<IWICBitmapDecoder>& decoder : {NewDecoder(), NewDecoder(stream)})
    {
        EXPECT_EQ(decoder->CopyPalette(nullptr), WINCODEC_ERR_PALETTEUNAVAILABLE);
        EXPECT_EQ(decoder->GetMetadataQueryReader(nullptr), WINCODEC_ERR_UNSUPPORTEDOPERATION);
        EXPECT_EQ(decoder->GetPreview(nullptr), WINCODEC_ERR_UNSUPPORTEDOPERATION);
        EXPECT_EQ(decoder->GetColorContexts(0, nullptr, nullptr), WINCODEC_ERR_UNSUPPORTEDOPERATION);
        EXPECT_EQ(decoder->GetThumbnail(nullptr), WINCODEC_ERR_CODECNOTHUMBNAIL);

        ComPtr<IWICMetadataQueryReader> metadata;
        ComPtr<IWICBitmapSource> preview;
        ComPtr<IWICBitmapSource> thumbnail;
        IWICColorContext* contexts[1] = {};
        UINT contextCount = 0;
        EXPECT_EQ(decoder->GetMetadataQueryReader(metadata.Put()), WINCODEC_ERR_UNSUPPORTEDOPERATION);
        EXPECT_EQ(decoder->GetPreview(preview.Put()), WINCODEC_ERR_UNSUPPORTEDOPERATION);
        EXPECT_EQ(decoder->GetColorContexts(1, contexts, &contextCount), WINCODEC_ERR_UNSUPPORTEDOPERATION);
        EXPECT_EQ(decoder->GetThumbnail(thumbnail.Put()), WINCODEC_ERR_CODECNOTHUMBNAIL);
        EXPECT_FALSE(metadata);
        EXPECT_FALSE(preview);
        EXPECT_FALSE(thumbnail);
    }
}

TEST(Decoder, PromisesOneFrameBeforeItHasAStreamButHasNone)
{
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    EXPECT_EQ(FrameCount(decoder), 1u);
    EXPECT_EQ(FrameRefusal(decoder, 0), WINCODEC_ERR_FRAMEMISSING);
    EXPECT_EQ(FrameRefusal(decoder, 1), WINCODEC_ERR_FRAMEMISSING);
    EXPECT_EQ(FrameRefusal(decoder, UINT_MAX), WINCODEC_ERR_FRAMEMISSING);
}

TEST(Decoder, NeedsSomewhereToPutFramesAndTheirCount)
{
    TestStream stream{GrayStack(2)};
    for (const ComPtr<IWICBitmapDecoder>& decoder : {NewDecoder(), NewDecoder(stream)})
    {
        EXPECT_EQ(decoder->GetFrameCount(nullptr), E_INVALIDARG);
        EXPECT_EQ(decoder->GetFrame(0, nullptr), E_INVALIDARG);
        EXPECT_EQ(decoder->GetFrame(1, nullptr), E_INVALIDARG);
        EXPECT_EQ(decoder->GetFrame(2, nullptr), E_INVALIDARG);
    }
}

TEST(Decoder, NeedsAStream)
{
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    EXPECT_EQ(decoder->Initialize(nullptr, WICDecodeMetadataCacheOnDemand), E_INVALIDARG);
    EXPECT_EQ(FrameRefusal(decoder, 0), WINCODEC_ERR_FRAMEMISSING);

    TestStream stream{GrayStack(2)};
    EXPECT_EQ(Initialize(decoder, stream), S_OK) << "no stream at all is no first try";
    EXPECT_EQ(decoder->Initialize(nullptr, WICDecodeMetadataCacheOnDemand), E_INVALIDARG);
    EXPECT_EQ(stream.references, 1u);
    EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]) << "and takes no stream away";
}

TEST(Decoder, OpensAStreamUnderEveryCacheOption)
{
    for (const WICDecodeOptions option :
         {WICDecodeMetadataCacheOnDemand, WICDecodeMetadataCacheOnLoad, static_cast<WICDecodeOptions>(77)})
    {
        TestStream stream{GrayStack(1)};
        const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        EXPECT_EQ(decoder->Initialize(&stream, option), S_OK);
        EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]);
    }
}

TEST(Decoder, OpensAStreamFromItsStartWhereverItStands)
{
    TestStream stream{GrayStack(1)};
    stream.position = 777;
    EXPECT_EQ(Picture(Frame(NewDecoder(stream), 0)), grayPictures[0]);
}

TEST(Decoder, HoldsOneReferenceToItsStreamUntilItGoes)
{
    TestStream stream{GrayStack(2)};
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
    EXPECT_EQ(stream.references, 1u);
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(decoder, 1);
    EXPECT_EQ(stream.references, 1u);
    EXPECT_EQ(decoder.Detach()->Release(), 0u);
    EXPECT_EQ(stream.references, 0u);
}
