#include "platform/StandIns.h"

#include <cstdlib>
#include <cstring>

namespace {

thread_local DebugStringSink debugStringSink = nullptr;

} // namespace

void PropVariantInit(PROPVARIANT* variant)
{
    std::memset(variant, 0, sizeof(*variant));
}

HRESULT PropVariantClear(PROPVARIANT* variant)
{
    if (variant->vt == VT_LPWSTR)
        CoTaskMemFree(variant->pwszVal);
    PropVariantInit(variant);
    return S_OK;
}

void* CoTaskMemAlloc(size_t count)
{
    return std::malloc(count);
}

void CoTaskMemFree(void* memory)
{
    std::free(memory);
}

void OutputDebugStringW(const wchar_t* line)
{
    if (debugStringSink)
        debugStringSink(line);
}

void SetDebugStringSink(DebugStringSink sink)
{
    debugStringSink = sink;
}
