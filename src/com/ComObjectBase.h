#pragma once

#include "platform/ModuleCounters.h"
#include "platform/Platform.h"

#include <atomic>
#include <cstdint>

// A COM interface cannot have a virtual destructor, its implementation can: Release deletes through it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// Reference counting for a COM class, which is counted among the module's objects while it lives.
/// A new object has one reference.
template <typename Interface>
class ComObjectBase : public Interface
{
public:
    ComObjectBase() noexcept { ++objectCount; }
    ComObjectBase(const ComObjectBase&) = delete;
    ComObjectBase& operator=(const ComObjectBase&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++refCount; }

    ULONG STDMETHODCALLTYPE Release() override
    {
        const uint32_t remaining = --refCount;
        if (remaining == 0)
            delete this;
        return remaining;
    }

protected:
    virtual ~ComObjectBase() { --objectCount; }

private:
    std::atomic<uint32_t> refCount{1};
};

#pragma GCC diagnostic pop
