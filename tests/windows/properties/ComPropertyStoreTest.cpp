#include "registration/ClassIds.h"
#include "support/gray/GrayStack.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/LumoraModule.h"
#include "windows/clients/PropertyStoreClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <propidl.h>

#include <cstring>
#include <vector>

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr PROPERTYKEY unknownKey = {
    {0x11111111, 0x2222, 0x3333, {0x44, 0x44, 0x55, 0x55, 0x66, 0x66, 0x77, 0x77}}, 3};

/// Every key that is served, and one that is not.
std::vector<PROPERTYKEY> KeysToTry()
{
    std::vector<PROPERTYKEY> keys(servedKeys.begin(), servedKeys.end());
    keys.push_back(unknownKey);
    return keys;
}

template <typename Interface>
ComPtr<Interface> As(IUnknown* object, REFIID riid)
{
    ComPtr<Interface> other;
    EXPECT_EQ(object->QueryInterface(riid, other.PutVoid()), S_OK);
    return other;
}

} // namespace

TEST(PropertyStore, HasThreeInterfacesOfOneObject)
{
    const ComPtr<IUnknown> object =
        LumoraModule::Shared().Create<IUnknown>(CLSID_LumoraPropertyHandler, IID_IUnknown);
    const auto initializer = As<IInitializeWithStream>(object.Get(), IID_IInitializeWithStream);
    const auto store = As<IPropertyStore>(object.Get(), IID_IPropertyStore);
    const auto capabilities = As<IPropertyStoreCapabilities>(object.Get(), IID_IPropertyStoreCapabilities);
    EXPECT_EQ(static_cast<IUnknown*>(initializer.Get()), object.Get())
        << "the first one stands for the object";
    for (IUnknown* const from :
         {static_cast<IUnknown*>(initializer.Get()), static_cast<IUnknown*>(store.Get()),
          static_cast<IUnknown*>(capabilities.Get())})
    {
        EXPECT_EQ(As<IUnknown>(from, IID_IUnknown).Get(), object.Get());
        EXPECT_EQ(As<IInitializeWithStream>(from, IID_IInitializeWithStream).Get(), initializer.Get());
        EXPECT_EQ(As<IPropertyStore>(from, IID_IPropertyStore).Get(), store.Get());
        EXPECT_EQ(As<IPropertyStoreCapabilities>(from, IID_IPropertyStoreCapabilities).Get(),
                  capabilities.Get());
    }
}

TEST(PropertyStore, CountsReferencesThroughAllItsInterfacesTogether)
{
    ComPtr<IPropertyStore> store = NewPropertyStore();
    ComPtr<IInitializeWithStream> initializer =
        As<IInitializeWithStream>(store.Get(), IID_IInitializeWithStream);
    ComPtr<IPropertyStoreCapabilities> capabilities =
        As<IPropertyStoreCapabilities>(store.Get(), IID_IPropertyStoreCapabilities);
    EXPECT_EQ(store->AddRef(), 4u);
    EXPECT_EQ(initializer->AddRef(), 5u);
    EXPECT_EQ(capabilities->AddRef(), 6u);
    EXPECT_EQ(store->Release(), 5u);
    EXPECT_EQ(store->Release(), 4u);
    EXPECT_EQ(capabilities->Release(), 3u);
    EXPECT_EQ(initializer.Detach()->Release(), 2u);
    EXPECT_EQ(store.Detach()->Release(), 1u);
    EXPECT_EQ(capabilities.Detach()->Release(), 0u);
}

TEST(PropertyStore, HasNoOtherInterface)
{
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    for (const IID& iid : {IID_IInitializeWithFile, IID_IWICBitmapDecoder, IID_IClassFactory,
                           IID_IPropertyStoreCache, IID_IMarshal})
    {
        void* answer = Untouchable<void>();
        EXPECT_EQ(store->QueryInterface(iid, &answer), E_NOINTERFACE);
        EXPECT_EQ(answer, nullptr);
    }
    EXPECT_EQ(store->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(store->AddRef(), 2u) << "no failure takes a reference";
    store->Release();
}

TEST(PropertyStore, ServesEightKeysInOrderAtAnyTime)
{
    TestStream stream{GrayStack(1)};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    for (const bool initialized : {false, true})
    {
        if (initialized)
        {
            EXPECT_EQ(Initialize(store, &stream), S_OK);
        }
        DWORD count = 0;
        EXPECT_EQ(store->GetCount(&count), S_OK);
        EXPECT_EQ(count, 8u);
        for (DWORD index = 0; index < 8; ++index)
        {
            PROPERTYKEY key{};
            EXPECT_EQ(store->GetAt(index, &key), S_OK);
            EXPECT_EQ(key.fmtid, servedKeys.at(index).fmtid) << index;
            EXPECT_EQ(key.pid, servedKeys.at(index).pid) << index;
        }
        for (const DWORD index : {8u, 9u, 0x80000000u, 0xFFFFFFFFu})
        {
            PROPERTYKEY key{};
            EXPECT_EQ(store->GetAt(index, &key), E_INVALIDARG) << index;
        }
    }
}

TEST(PropertyStore, NeedsSomewhereToPutEachAnswer)
{
    TestStream stream{GrayStack(1)};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    for (const bool initialized : {false, true})
    {
        if (initialized)
        {
            EXPECT_EQ(Initialize(store, &stream), S_OK);
        }
        EXPECT_EQ(store->GetCount(nullptr), E_POINTER);
        EXPECT_EQ(store->GetAt(0, nullptr), E_POINTER);
        EXPECT_EQ(store->GetAt(8, nullptr), E_POINTER);
        for (const PROPERTYKEY& key : KeysToTry())
            EXPECT_EQ(store->GetValue(key, nullptr), E_POINTER);
    }
}

TEST(PropertyStore, CannotBeWritten)
{
    TestStream stream{GrayStack(1)};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    const auto capabilities = As<IPropertyStoreCapabilities>(store.Get(), IID_IPropertyStoreCapabilities);
    for (const bool initialized : {false, true})
    {
        if (initialized)
        {
            EXPECT_EQ(Initialize(store, &stream), S_OK);
        }
        const std::array<PropertyValue, 8> before = ValuesOf(store);
        PROPVARIANT value;
        PropVariantInit(&value);
        value.vt = VT_UI4;
        value.ulVal = 12345;
        for (const PROPERTYKEY& key : KeysToTry())
        {
            EXPECT_EQ(store->SetValue(key, value), STG_E_ACCESSDENIED);
            EXPECT_EQ(capabilities->IsPropertyWritable(key), S_FALSE);
        }
        EXPECT_EQ(store->Commit(), STG_E_ACCESSDENIED);
        EXPECT_EQ(ValuesOf(store), before);
    }
}

TEST(PropertyStore, NeedsAStream)
{
    DiagnosticLines diagnostics;
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    EXPECT_EQ(Initialize(store, nullptr), E_INVALIDARG);
    EXPECT_THAT(diagnostics.Take(), IsEmpty());
    EXPECT_THAT(ValuesOf(store), Each(PropertyValue{}));

    TestStream stream{GrayStack(1)};
    EXPECT_EQ(Initialize(store, &stream), S_OK);
    EXPECT_EQ(ValueOf(store, servedKeys[0]), PropertyValue{4ul});
}

TEST(PropertyStore, FailsOnFilesThatItCannotRead)
{
    struct UnreadableFile
    {
        std::vector<uint8_t> content;
        std::vector<std::string> lines;
    };
    std::vector<uint8_t> headerAlone = GrayStack(1);
    headerAlone.resize(1024);
    DiagnosticLines diagnostics;
    for (const UnreadableFile& file : std::vector<UnreadableFile>{
             {{}, {}},
             {std::vector<uint8_t>(63, 'x'), {}},
             {std::vector<uint8_t>(64, 'x'), {"[Lumora] Could not identify the file format"}},
             {headerAlone, {"[Lumora] MRC: No complete frame is present in the file"}},
         })
    {
        TestStream stream{file.content};
        const ComPtr<IPropertyStore> store = NewPropertyStore();
        EXPECT_EQ(Initialize(store, &stream), E_FAIL);
        EXPECT_EQ(diagnostics.Take(), file.lines);
        EXPECT_EQ(stream.references, 0u);
        EXPECT_THAT(ValuesOf(store), Each(PropertyValue{}));

        TestStream goodStream{GrayStack(1)};
        EXPECT_EQ(Initialize(store, &goodStream), S_OK) << "another stream may do";
        EXPECT_EQ(ValueOf(store, servedKeys[2]), PropertyValue{L"4 x 2"});
    }
}

TEST(PropertyStore, CatchesWhatAReaderThrows)
{
    // The size is asked for when the file is opened, when it is identified, and by the reader, which has no
    // other way than an exception to say that it cannot begin.
    TestStream stream{GrayStack(1), {.failStatAt = 3}};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    DiagnosticLines diagnostics;
    EXPECT_EQ(Initialize(store, &stream), E_FAIL);
    EXPECT_THAT(
        diagnostics.Take(),
        ElementsAre("[Lumora] Exception in PropertyStore::Initialize( IStream *pStream, DWORD grfMode )"));
    EXPECT_EQ(stream.references, 0u);
    EXPECT_THAT(ValuesOf(store), Each(PropertyValue{}));

    EXPECT_EQ(Initialize(store, &stream), S_OK) << "the stream has recovered";
    EXPECT_EQ(ValueOf(store, servedKeys[0]), PropertyValue{4ul});
}
