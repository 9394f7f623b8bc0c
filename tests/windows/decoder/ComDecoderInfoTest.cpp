#include "registration/ClassIds.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/LumoraModule.h"
#include "windows/registry/RegistrySandbox.h"
#include "windows/support/ImportHook.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <objbase.h>

namespace {

/// The information about a component, of which only the way to its real interface is used.
class FakeComponentInfo final : public IUnknown
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override
    {
        askedFor = riid;
        answerGoesTo = ppv;
        if (SUCCEEDED(result) && ppv)
        {
            *ppv = this;
            AddRef();
        }
        return result;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    HRESULT result = S_OK;
    IID askedFor{};
    void** answerGoesTo = nullptr;
    ULONG references = 0;
};

/// The first methods of IWICImagingFactory; the decoder calls none of those that follow.
class FakeImagingFactory final : public IUnknown
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOTIMPL; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    virtual HRESULT STDMETHODCALLTYPE CreateDecoderFromFilename() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE CreateDecoderFromStream() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE CreateDecoderFromFileHandle() { return E_NOTIMPL; }
    virtual HRESULT STDMETHODCALLTYPE CreateComponentInfo(REFCLSID clsid, IWICComponentInfo** info)
    {
        askedFor = clsid;
        if (SUCCEEDED(result))
        {
            *info = reinterpret_cast<IWICComponentInfo*>(&componentInfo);
            componentInfo.AddRef();
        }
        return result;
    }

    FakeComponentInfo componentInfo;
    HRESULT result = S_OK;
    CLSID askedFor{};
    ULONG references = 0;
};

/// One request for an object, and how it is answered.
struct Creation
{
    FakeImagingFactory* factory = nullptr;
    HRESULT result = S_OK;
    int calls = 0;
    CLSID clsid{};
    IUnknown* outer = nullptr;
    DWORD context = 0;
    IID iid{};
};

Creation creation;

HRESULT WINAPI CreateFakeFactory(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, void** object)
{
    ++creation.calls;
    creation.clsid = clsid;
    creation.outer = outer;
    creation.context = context;
    creation.iid = iid;
    *object = nullptr;
    if (SUCCEEDED(creation.result))
    {
        *object = creation.factory;
        creation.factory->AddRef();
    }
    return creation.result;
}

/// A decoder whose module is given the fake factory.
class DecoderInfo : public testing::Test
{
protected:
    DecoderInfo() { creation = {.factory = &factory}; }

    FakeImagingFactory factory;
    ImportHook hook{LumoraModule::Shared().handle, "CoCreateInstance", CreateFakeFactory};
    ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    IWICBitmapDecoderInfo* info = Untouchable<IWICBitmapDecoderInfo>();
};

} // namespace

TEST_F(DecoderInfo, IsTheComponentInfoOfTheDecodersClass)
{
    EXPECT_EQ(decoder->GetDecoderInfo(&info), S_OK);
    EXPECT_EQ(static_cast<void*>(info), &factory.componentInfo);
    EXPECT_EQ(factory.askedFor, CLSID_LumoraDecoder);
    EXPECT_EQ(factory.componentInfo.askedFor, IID_IWICBitmapDecoderInfo);
    EXPECT_EQ(factory.componentInfo.references, 1u) << "the caller's";

    EXPECT_EQ(creation.clsid, CLSID_WICImagingFactory2);
    EXPECT_EQ(creation.outer, nullptr);
    EXPECT_EQ(creation.context, DWORD{CLSCTX_INPROC_SERVER});
    EXPECT_EQ(creation.iid, IID_IWICImagingFactory);
}

TEST_F(DecoderInfo, IsHadWithoutAndWithAStream)
{
    TestStream stream{GrayStack(1)};
    EXPECT_EQ(decoder->GetDecoderInfo(&info), S_OK);
    EXPECT_EQ(Initialize(decoder, stream), S_OK);
    EXPECT_EQ(decoder->GetDecoderInfo(&info), S_OK);
    EXPECT_EQ(factory.componentInfo.references, 2u);
    // The decoder keeps the stream and would outlive it.
    decoder.Reset();
}

TEST_F(DecoderInfo, ComesFromOneFactoryThatIsKeptAsLongAsTheDecoder)
{
    EXPECT_EQ(creation.calls, 0) << "the factory is made when it is needed";
    EXPECT_EQ(decoder->GetDecoderInfo(&info), S_OK);
    EXPECT_EQ(decoder->GetDecoderInfo(&info), S_OK);
    EXPECT_EQ(creation.calls, 1);
    EXPECT_EQ(factory.references, 1u);
    decoder.Reset();
    EXPECT_EQ(factory.references, 0u);
}

TEST_F(DecoderInfo, IsNotThereWithoutAFactory)
{
    creation.result = REGDB_E_CLASSNOTREG;
    EXPECT_EQ(decoder->GetDecoderInfo(&info), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(info, Untouchable<IWICBitmapDecoderInfo>());

    creation.result = S_OK;
    EXPECT_EQ(decoder->GetDecoderInfo(&info), S_OK) << "the next call tries again";
    EXPECT_EQ(creation.calls, 2);
}

TEST_F(DecoderInfo, IsNotThereForAClassThatIsNotRegistered)
{
    factory.result = WINCODEC_ERR_COMPONENTNOTFOUND;
    EXPECT_EQ(decoder->GetDecoderInfo(&info), WINCODEC_ERR_COMPONENTNOTFOUND);
    EXPECT_EQ(info, Untouchable<IWICBitmapDecoderInfo>());
    EXPECT_EQ(factory.references, 1u);
}

TEST_F(DecoderInfo, IsNotThereForAComponentOfAnotherKind)
{
    factory.componentInfo.result = E_NOINTERFACE;
    EXPECT_EQ(decoder->GetDecoderInfo(&info), E_NOINTERFACE);
    EXPECT_EQ(factory.componentInfo.references, 0u);
    EXPECT_EQ(factory.references, 1u);
}

TEST_F(DecoderInfo, TurnsEverySuccessIntoThePlainOne)
{
    factory.componentInfo.result = S_FALSE;
    EXPECT_EQ(decoder->GetDecoderInfo(&info), S_OK);
    factory.result = S_FALSE;
    EXPECT_EQ(decoder->GetDecoderInfo(&info), S_OK);
}

TEST_F(DecoderInfo, LeavesAMissingPlaceToWicToComplainOf)
{
    factory.componentInfo.result = E_POINTER;
    EXPECT_EQ(decoder->GetDecoderInfo(nullptr), E_POINTER);
    EXPECT_EQ(factory.componentInfo.answerGoesTo, nullptr);
    EXPECT_EQ(factory.componentInfo.references, 0u);
}

TEST(DecoderInfoOfWindows, IsNotThereWithoutRegistration)
{
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    {
        const RegistrySandbox registry;
        const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        ComPtr<IWICBitmapDecoderInfo> info;
        // Windows has an error of its own for this, Wine the registry's.
        const auto saysSo =
            testing::AnyOf(WINCODEC_ERR_COMPONENTNOTFOUND, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
        EXPECT_THAT(decoder->GetDecoderInfo(info.Put()), saysSo);
        EXPECT_FALSE(info);
        EXPECT_THAT(decoder->GetDecoderInfo(nullptr), saysSo);
    }
    CoUninitialize();
}

TEST(DecoderInfoOfWindows, IsNotThereOnAThreadWithoutCom)
{
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    ComPtr<IWICBitmapDecoderInfo> info;
    EXPECT_EQ(decoder->GetDecoderInfo(info.Put()), CO_E_NOTINITIALIZED);
    EXPECT_FALSE(info);
}
