#pragma once

#include "metadata/Metadata.h"

#include <propsys.h>

#include <atomic>
#include <cstdint>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// Gives the shell the properties of one file, read from its header. Read-only: after Initialize neither
/// the stream nor the reader is kept.
class PropertyStore final : public IInitializeWithStream,
                            public IPropertyStore,
                            public IPropertyStoreCapabilities
{
public:
    PropertyStore() noexcept;
    PropertyStore(const PropertyStore&) = delete;
    PropertyStore& operator=(const PropertyStore&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE Initialize(IStream* stream, DWORD grfMode) override;

    virtual ~PropertyStore();

    HRESULT STDMETHODCALLTYPE GetCount(DWORD* count) override;
    HRESULT STDMETHODCALLTYPE GetAt(DWORD index, PROPERTYKEY* key) override;
    HRESULT STDMETHODCALLTYPE GetValue(REFPROPERTYKEY key, PROPVARIANT* value) override;
    HRESULT STDMETHODCALLTYPE SetValue(REFPROPERTYKEY key, REFPROPVARIANT value) override;
    HRESULT STDMETHODCALLTYPE Commit() override;

    HRESULT STDMETHODCALLTYPE IsPropertyWritable(REFPROPERTYKEY key) override;

private:
    std::atomic<uint32_t> refCount{1};
    Tav::Imaging::RawImage::Metadata metadata;
};

#pragma GCC diagnostic pop
