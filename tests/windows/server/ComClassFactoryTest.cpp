#include "registration/ClassIds.h"
#include "windows/clients/LumoraModule.h"
#include "windows/support/ModuleHeap.h"

#include <gtest/gtest.h>

#include <propsys.h>
#include <wincodec.h>

#include <vector>

namespace {

/// Overwritten by every call that answers through a pointer.
// NOLINTNEXTLINE(performance-no-int-to-ptr)
void* const garbage = reinterpret_cast<void*>(uintptr_t{0x1234});

/// A served class, interfaces that its objects have, and one that they do not.
struct ServedClass
{
    const char* name;
    CLSID clsid;
    std::vector<IID> interfaces;
    IID missingInterface;
};

const std::vector<ServedClass>& ServedClasses()
{
    static const std::vector<ServedClass> classes = {
        {"decoder", CLSID_LumoraDecoder, {IID_IUnknown, IID_IWICBitmapDecoder}, IID_IPropertyStore},
        {"property handler",
         CLSID_LumoraPropertyHandler,
         {IID_IUnknown, IID_IInitializeWithStream, IID_IPropertyStore, IID_IPropertyStoreCapabilities},
         IID_IWICBitmapDecoder},
    };
    return classes;
}

ComPtr<IClassFactory> FactoryOf(const ServedClass& served)
{
    ComPtr<IClassFactory> factory;
    LumoraModule::Shared().dllGetClassObject(served.clsid, IID_IClassFactory, factory.PutVoid());
    return factory;
}

} // namespace

TEST(ClassFactory, AnswersToItsOwnInterfacesWithItself)
{
    for (const ServedClass& served : ServedClasses())
    {
        SCOPED_TRACE(served.name);
        const ComPtr<IClassFactory> factory = FactoryOf(served);
        for (const IID& iid : {IID_IUnknown, IID_IClassFactory})
        {
            void* answer = garbage;
            EXPECT_EQ(factory->QueryInterface(iid, &answer), S_OK);
            EXPECT_EQ(answer, factory.Get());
            EXPECT_EQ(factory->Release(), 1u) << "the answer carries a reference";
        }
    }
}

TEST(ClassFactory, HasNoOtherInterface)
{
    for (const ServedClass& served : ServedClasses())
    {
        SCOPED_TRACE(served.name);
        const ComPtr<IClassFactory> factory = FactoryOf(served);
        for (const IID& iid : {IID_IClassFactory2, IID_IWICBitmapDecoder, IID_IPropertyStore, IID_IMarshal})
        {
            void* answer = garbage;
            EXPECT_EQ(factory->QueryInterface(iid, &answer), E_NOINTERFACE);
            EXPECT_EQ(answer, nullptr);
        }
        EXPECT_EQ(factory->QueryInterface(IID_IUnknown, nullptr), E_INVALIDARG);
        EXPECT_EQ(factory->QueryInterface(IID_IMarshal, nullptr), E_INVALIDARG);
        EXPECT_EQ(factory->AddRef(), 2u) << "no failure takes a reference";
        factory->Release();
    }
}

TEST(ClassFactory, CreatesANewObjectWithOneReferenceEachTime)
{
    for (const ServedClass& served : ServedClasses())
    {
        SCOPED_TRACE(served.name);
        const ComPtr<IClassFactory> factory = FactoryOf(served);
        for (const IID& iid : served.interfaces)
        {
            ComPtr<IUnknown> first;
            ComPtr<IUnknown> second;
            ASSERT_EQ(factory->CreateInstance(nullptr, iid, first.PutVoid()), S_OK);
            ASSERT_EQ(factory->CreateInstance(nullptr, iid, second.PutVoid()), S_OK);
            EXPECT_NE(first.Get(), second.Get());
            EXPECT_EQ(first->AddRef(), 2u);
            EXPECT_EQ(first->Release(), 1u);
            EXPECT_EQ(first.Detach()->Release(), 0u);
        }
    }
}

TEST(ClassFactory, KeepsNoReferenceToWhatItCreates)
{
    for (const ServedClass& served : ServedClasses())
    {
        SCOPED_TRACE(served.name);
        ComPtr<IClassFactory> factory = FactoryOf(served);
        ComPtr<IUnknown> object;
        ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, object.PutVoid()), S_OK);
        EXPECT_EQ(factory.Detach()->Release(), 0u) << "no object keeps its factory";
        EXPECT_EQ(object->AddRef(), 2u);
        EXPECT_EQ(object->Release(), 1u);
        EXPECT_EQ(object.Detach()->Release(), 0u);
    }
}

TEST(ClassFactory, NeedsSomewhereToPutTheObject)
{
    for (const ServedClass& served : ServedClasses())
    {
        SCOPED_TRACE(served.name);
        const ComPtr<IClassFactory> factory = FactoryOf(served);
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_INVALIDARG);
        EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_IUnknown, nullptr), E_INVALIDARG);
    }
}

TEST(ClassFactory, CreatesNothingInsideAnotherObject)
{
    for (const ServedClass& served : ServedClasses())
    {
        SCOPED_TRACE(served.name);
        const ComPtr<IClassFactory> factory = FactoryOf(served);
        const ModuleHeap heap{LumoraModule::Shared().handle};
        for (const IID& iid : {IID_IUnknown, served.interfaces.back(), served.missingInterface})
        {
            void* answer = garbage;
            EXPECT_EQ(factory->CreateInstance(factory.Get(), iid, &answer), CLASS_E_NOAGGREGATION);
            EXPECT_EQ(answer, nullptr);
        }
        EXPECT_EQ(heap.Requests(), 0u);
        EXPECT_EQ(factory->AddRef(), 2u) << "the outer object is left alone";
        factory->Release();
    }
}

TEST(ClassFactory, DestroysAnObjectThatLacksTheInterface)
{
    for (const ServedClass& served : ServedClasses())
    {
        SCOPED_TRACE(served.name);
        const ComPtr<IClassFactory> factory = FactoryOf(served);
        const ModuleHeap heap{LumoraModule::Shared().handle};
        void* answer = garbage;
        EXPECT_EQ(factory->CreateInstance(nullptr, served.missingInterface, &answer), E_NOINTERFACE);
        EXPECT_EQ(answer, nullptr);
        EXPECT_GE(heap.Requests(), 1u) << "the object itself decides on its interfaces";
        EXPECT_EQ(heap.BlocksHeld(), 0u);
    }
}

TEST(ClassFactory, GivesBackAllMemoryOfItsObjects)
{
    for (const ServedClass& served : ServedClasses())
    {
        SCOPED_TRACE(served.name);
        const ModuleHeap heap{LumoraModule::Shared().handle};
        {
            const ComPtr<IClassFactory> factory = FactoryOf(served);
            ComPtr<IUnknown> object;
            ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, object.PutVoid()), S_OK);
            EXPECT_GE(heap.BlocksHeld(), 2u);
        }
        EXPECT_EQ(heap.BlocksHeld(), 0u);
    }
}

TEST(ClassFactory, SaysWhenThereIsNoMemoryForAnObject)
{
    for (const ServedClass& served : ServedClasses())
    {
        SCOPED_TRACE(served.name);
        const ComPtr<IClassFactory> factory = FactoryOf(served);
        ModuleHeap heap{LumoraModule::Shared().handle};
        // The first failure of a process also sets up the run-time library for exceptions, for good.
        for (const bool again : {false, true})
        {
            const size_t heldBefore = heap.BlocksHeld();
            heap.RefuseRequest(1);
            void* answer = garbage;
            EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, &answer), E_OUTOFMEMORY);
            EXPECT_TRUE(heap.HasRefused());
            EXPECT_EQ(answer, nullptr);
            if (again)
            {
                EXPECT_EQ(heap.BlocksHeld(), heldBefore);
            }
        }

        ComPtr<IUnknown> object;
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, object.PutVoid()), S_OK);
    }
}

TEST(ClassFactory, LocksTheServerWheneverAsked)
{
    for (const ServedClass& served : ServedClasses())
    {
        SCOPED_TRACE(served.name);
        const ComPtr<IClassFactory> factory = FactoryOf(served);
        for (const BOOL lock : {TRUE, 5, FALSE, FALSE})
            EXPECT_EQ(factory->LockServer(lock), S_OK) << lock;
    }
}
