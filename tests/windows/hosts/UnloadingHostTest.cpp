#include "registration/ClassIds.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/PropertyStoreClient.h"

#include <gtest/gtest.h>

#include <objbase.h>

#include <functional>
#include <vector>

// Some hosts make COM unload what it can after every call. This program knows Lumora.dll from COM alone.

namespace {

template <typename Interface>
ComPtr<Interface> Created(REFCLSID classId, REFIID interfaceId)
{
    ComPtr<Interface> object;
    EXPECT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, interfaceId, object.PutVoid()), S_OK);
    return object;
}

/// Lets COM unload every DLL that says that it is not needed. Once a class has been given, ours must stay.
void UnloadWhatIsNotNeeded()
{
    CoFreeUnusedLibraries();
    CoFreeUnusedLibrariesEx(0, 0);
    const HMODULE module = GetModuleHandleW(L"Lumora.dll");
    ASSERT_NE(module, nullptr);
    const auto dllCanUnloadNow = reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
    EXPECT_EQ(dllCanUnloadNow(), S_FALSE);
}

} // namespace

TEST(Unloading, MayBeTriedBetweenAllCalls)
{
    TestStream stream{GrayStack(2)};
    ComPtr<IWICBitmapDecoder> decoder;
    ComPtr<IWICBitmapFrameDecode> frame;
    ComPtr<IPropertyStore> store;
    const std::vector<std::function<void()>> calls = {
        [&] { decoder = Created<IWICBitmapDecoder>(CLSID_LumoraDecoder, IID_IWICBitmapDecoder); },
        [&] { EXPECT_EQ(Initialize(decoder, stream), S_OK); },
        [&] { EXPECT_EQ(FrameCount(decoder), 2U); },
        [&] { frame = Frame(decoder, 0); },
        [&] { EXPECT_EQ(Picture(frame), grayPictures[0]); },
        [&] { frame = Frame(decoder, 1); },
        [&] { decoder.Reset(); },
        [&] { EXPECT_EQ(Picture(frame), grayPictures[1]); },
        [&] { frame.Reset(); },
        [&] { EXPECT_EQ(stream.references, 0U); },
        [&] { store = Created<IPropertyStore>(CLSID_LumoraPropertyHandler, IID_IPropertyStore); },
        [&] { EXPECT_EQ(Initialize(store, &stream), S_OK); },
        [&] { EXPECT_EQ(ValueOf(store, servedKeys[2]), PropertyValue{L"4 x 2 x 2"}); },
        [&] { store.Reset(); },
    };
    for (int round = 0; round < 3; ++round)
    {
        for (const std::function<void()>& call : calls)
        {
            call();
            UnloadWhatIsNotNeeded();
        }
    }
}
