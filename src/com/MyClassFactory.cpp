#include "com/MyClassFactory.h"

#include "platform/ComPtr.h"

MyClassFactory::MyClassFactory(CreateFunction create) noexcept : create(create)
{
    // Counted once more than the base does and never taken back: once a class has been handed out, the
    // module stays loaded until its process ends, whatever the host does with references.
    ++objectCount;
}

HRESULT MyClassFactory::QueryInterface(REFIID riid, void** ppv)
{
    if (!ppv)
        return E_INVALIDARG;
    *ppv = nullptr;
    if (riid != IID_IUnknown && riid != IID_IClassFactory)
        return E_NOINTERFACE;
    AddRef();
    *ppv = static_cast<IClassFactory*>(this);
    return S_OK;
}

HRESULT MyClassFactory::CreateInstance(IUnknown* outer, REFIID riid, void** ppv)
{
    if (!ppv)
        return E_INVALIDARG;
    *ppv = nullptr;
    if (outer)
        return CLASS_E_NOAGGREGATION;

    ComPtr<IUnknown> object;
    const HRESULT result = create(object.Put());
    if (FAILED(result))
        return result;
    return object->QueryInterface(riid, ppv);
}

HRESULT MyClassFactory::LockServer(BOOL lock)
{
    if (lock)
        ++lockCount;
    else
        --lockCount;
    return S_OK;
}
