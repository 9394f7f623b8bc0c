#pragma once

#include "com/ComObjectBase.h"

/// Creates the objects of one class, each with a creation function of the class's own.
class MyClassFactory final : public ComObjectBase<IClassFactory>
{
public:
    /// Creates an object with one reference.
    using CreateFunction = HRESULT (*)(IUnknown** object);

    explicit MyClassFactory(CreateFunction create) noexcept;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** ppv) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

private:
    CreateFunction create;
};
