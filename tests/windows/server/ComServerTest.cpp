#include "registration/ClassIds.h"
#include "windows/clients/LumoraModule.h"
#include "windows/registry/RegistrySandbox.h"
#include "windows/support/ImportHook.h"
#include "windows/support/ModuleHeap.h"

#include <gtest/gtest.h>

#include <shlobj.h>

#include <vector>

namespace {

/// Overwritten by every call that answers through a pointer.
// NOLINTNEXTLINE(performance-no-int-to-ptr)
void* const garbage = reinterpret_cast<void*>(uintptr_t{0x1234});

const GUID unknownClass = {0x11111111, 0x2222, 0x3333, {0x44, 0x44, 0x55, 0x55, 0x66, 0x66, 0x77, 0x77}};

HRESULT ClassObject(const LumoraModule& module, REFCLSID rclsid, REFIID riid, ComPtr<IUnknown>& object)
{
    void* result = garbage;
    const HRESULT hresult = module.dllGetClassObject(rclsid, riid, &result);
    EXPECT_NE(result, garbage);
    if (result != garbage)
        object = ComPtr<IUnknown>::Adopt(static_cast<IUnknown*>(result));
    return hresult;
}

struct Notification
{
    LONG event;
    UINT flags;
    const void* first;
    const void* second;
};

std::vector<Notification> notifications;

void WINAPI CollectNotification(LONG event, UINT flags, const void* first, const void* second)
{
    notifications.push_back({event, flags, first, second});
}

} // namespace

TEST(ClassObject, NeedsSomewhereToGo)
{
    const LumoraModule& module = LumoraModule::Shared();
    EXPECT_EQ(module.dllGetClassObject(CLSID_LumoraDecoder, IID_IClassFactory, nullptr), E_INVALIDARG);
    EXPECT_EQ(module.dllGetClassObject(CLSID_LumoraPropertyHandler, IID_IClassFactory, nullptr),
              E_INVALIDARG);
    EXPECT_EQ(module.dllGetClassObject(unknownClass, IID_IClassFactory, nullptr), E_INVALIDARG);
    EXPECT_EQ(module.dllGetClassObject(unknownClass, IID_IUnknown, nullptr), E_INVALIDARG);
}

TEST(ClassObject, IsGivenAsAClassFactoryOnly)
{
    for (const CLSID& clsid : {CLSID_LumoraDecoder, CLSID_LumoraPropertyHandler, unknownClass})
    {
        for (const IID& iid : {IID_IUnknown, IID_IClassFactory2, IID_IStream, clsid})
        {
            ComPtr<IUnknown> object;
            EXPECT_EQ(ClassObject(LumoraModule::Shared(), clsid, iid, object), E_INVALIDARG);
            EXPECT_FALSE(object);
        }
    }
}

TEST(ClassObject, OfAnUnknownClassIsNotAvailable)
{
    const GUID almostTheDecoder = [] {
        GUID clsid = CLSID_LumoraDecoder;
        clsid.Data4[7] ^= 1;
        return clsid;
    }();
    for (const CLSID& clsid : {unknownClass, almostTheDecoder, GUID_ContainerFormatLumora, GUID{}})
    {
        ComPtr<IUnknown> object;
        EXPECT_EQ(ClassObject(LumoraModule::Shared(), clsid, IID_IClassFactory, object),
                  CLASS_E_CLASSNOTAVAILABLE);
        EXPECT_FALSE(object);
    }
}

TEST(ClassObject, IsANewFactoryWithOneReferenceEachTime)
{
    for (const CLSID& clsid : {CLSID_LumoraDecoder, CLSID_LumoraPropertyHandler})
    {
        ComPtr<IUnknown> first;
        ComPtr<IUnknown> second;
        ASSERT_EQ(ClassObject(LumoraModule::Shared(), clsid, IID_IClassFactory, first), S_OK);
        ASSERT_EQ(ClassObject(LumoraModule::Shared(), clsid, IID_IClassFactory, second), S_OK);
        EXPECT_NE(first.Get(), second.Get());
        EXPECT_EQ(first->AddRef(), 2u);
        EXPECT_EQ(first->AddRef(), 3u);
        EXPECT_EQ(first->Release(), 2u);
        EXPECT_EQ(first->Release(), 1u);
        EXPECT_EQ(first.Detach()->Release(), 0u);
    }
}

TEST(ClassObject, SaysWhenThereIsNoMemoryForIt)
{
    FreshLumoraModule module;
    ModuleHeap heap{module->handle};
    for (const CLSID& clsid : {CLSID_LumoraDecoder, CLSID_LumoraPropertyHandler})
    {
        ComPtr<IUnknown> object;
        heap.RefuseRequest(1);
        EXPECT_EQ(ClassObject(*module.operator->(), clsid, IID_IClassFactory, object), E_OUTOFMEMORY);
        EXPECT_TRUE(heap.HasRefused());
        EXPECT_FALSE(object);
    }
    EXPECT_EQ(module->dllCanUnloadNow(), S_OK) << "a factory that was never made is counted";
}

TEST(Unloading, IsFineUntilAClassObjectHasBeenGiven)
{
    FreshLumoraModule module;
    EXPECT_EQ(module->dllCanUnloadNow(), S_OK);

    void* object = nullptr;
    EXPECT_NE(module->dllGetClassObject(unknownClass, IID_IClassFactory, &object), S_OK);
    EXPECT_NE(module->dllGetClassObject(CLSID_LumoraDecoder, IID_IUnknown, &object), S_OK);
    EXPECT_NE(module->dllGetClassObject(CLSID_LumoraDecoder, IID_IClassFactory, nullptr), S_OK);
    EXPECT_EQ(module->dllRegisterServer(), S_OK);
    EXPECT_EQ(module->dllUnregisterServer(), S_OK);
    EXPECT_EQ(module->dllCanUnloadNow(), S_OK);
}

TEST(Unloading, IsRefusedForEverOnceAClassObjectHasBeenGiven)
{
    for (const CLSID& clsid : {CLSID_LumoraDecoder, CLSID_LumoraPropertyHandler})
    {
        FreshLumoraModule module;
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(module->dllGetClassObject(clsid, IID_IClassFactory, factory.PutVoid()), S_OK);
        EXPECT_EQ(module->dllCanUnloadNow(), S_FALSE);

        ComPtr<IUnknown> object;
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, object.PutVoid()), S_OK);
        EXPECT_EQ(factory->LockServer(TRUE), S_OK);
        EXPECT_EQ(module->dllCanUnloadNow(), S_FALSE);

        EXPECT_EQ(factory->LockServer(FALSE), S_OK);
        object.Reset();
        EXPECT_EQ(factory.Detach()->Release(), 0u);
        EXPECT_EQ(module->dllCanUnloadNow(), S_FALSE);
    }
}

TEST(Unloading, LeavesACopyOfTheDllCountingForItself)
{
    FreshLumoraModule first;
    FreshLumoraModule second;
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(first->dllGetClassObject(CLSID_LumoraDecoder, IID_IClassFactory, factory.PutVoid()), S_OK);
    EXPECT_EQ(first->dllCanUnloadNow(), S_FALSE);
    EXPECT_EQ(second->dllCanUnloadNow(), S_OK);
    factory.Reset();
}

TEST(Registering, OnlyTellsTheShellToLookAgain)
{
    const LumoraModule& module = LumoraModule::Shared();
    const ImportHook hook{module.handle, "SHChangeNotify", CollectNotification};
    const RegistrySandbox registry;
    notifications.clear();

    EXPECT_EQ(module.dllRegisterServer(), S_OK);
    EXPECT_TRUE(registry.IsEmpty());
    ASSERT_EQ(notifications.size(), 1u);
    EXPECT_EQ(notifications[0].event, SHCNE_ASSOCCHANGED);
    EXPECT_EQ(notifications[0].flags, UINT{SHCNF_IDLIST});
    EXPECT_EQ(notifications[0].first, nullptr);
    EXPECT_EQ(notifications[0].second, nullptr);
}

TEST(Registering, IsTakenBackByDoingNothing)
{
    const LumoraModule& module = LumoraModule::Shared();
    const ImportHook hook{module.handle, "SHChangeNotify", CollectNotification};
    const RegistrySandbox registry;
    notifications.clear();

    EXPECT_EQ(module.dllUnregisterServer(), S_OK);
    EXPECT_TRUE(registry.IsEmpty());
    EXPECT_TRUE(notifications.empty());
}

TEST(Registering, IsAnnouncedThroughTheRealShell)
{
    EXPECT_EQ(LumoraModule::Shared().dllRegisterServer(), S_OK);
    EXPECT_EQ(LumoraModule::Shared().dllRegisterServer(), S_OK);
}

TEST(RegistrySandbox, NoticesWhatIsWrittenBelowEachRoot)
{
    for (HKEY root : {HKEY_CLASSES_ROOT, HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
    {
        const RegistrySandbox registry;
        EXPECT_TRUE(registry.IsEmpty());
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyW(root, L"CLSID\\{LumoraTests}", &key), ERROR_SUCCESS);
        RegCloseKey(key);
        EXPECT_FALSE(registry.IsEmpty());
    }
}
