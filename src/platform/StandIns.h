#pragma once

#include <cstddef>
#include <cstdint>

/// Stand-ins for the Windows types and calls that core, formats and metadata use. Names, values and
/// behaviour are the Windows SDK's, as far as they are used here.

// The names are not ours to choose.
// NOLINTBEGIN(readability-identifier-naming)

using BOOL = int;
using BYTE = uint8_t;
using DWORD = uint32_t;
using ULONG = uint32_t;
using LPWSTR = wchar_t*;
using HRESULT = int32_t;
using VARTYPE = uint16_t;

#define STDMETHODCALLTYPE

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001);
constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
constexpr HRESULT STG_E_INVALIDFUNCTION = static_cast<HRESULT>(0x80030001);
constexpr HRESULT STG_E_READFAULT = static_cast<HRESULT>(0x8003001E);

constexpr bool SUCCEEDED(HRESULT result)
{
    return result >= 0;
}

constexpr bool FAILED(HRESULT result)
{
    return result < 0;
}

struct GUID
{
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];

    bool operator==(const GUID&) const = default;
};

using IID = GUID;
using REFIID = const IID&;

constexpr IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID IID_IStream = {0x0000000C, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct LARGE_INTEGER
{
    int64_t QuadPart;
};

struct ULARGE_INTEGER
{
    uint64_t QuadPart;
};

struct STATSTG
{
    LPWSTR pwcsName;
    DWORD type;
    ULARGE_INTEGER cbSize;
};

constexpr DWORD STGTY_STREAM = 2;
constexpr DWORD STATFLAG_NONAME = 1;
constexpr DWORD STREAM_SEEK_SET = 0;
constexpr DWORD STREAM_SEEK_CUR = 1;
constexpr DWORD STREAM_SEEK_END = 2;

// COM interfaces have no virtual destructor: the last Release deletes an object.
struct IUnknown
{
    virtual HRESULT QueryInterface(REFIID riid, void** object) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

protected:
    ~IUnknown() = default;
};

struct IStream : IUnknown
{
    virtual HRESULT Read(void* buffer, ULONG count, ULONG* countRead) = 0;
    virtual HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) = 0;
    virtual HRESULT Stat(STATSTG* statistics, DWORD flags) = 0;

protected:
    ~IStream() = default;
};

constexpr VARTYPE VT_EMPTY = 0;
constexpr VARTYPE VT_UI4 = 19;
constexpr VARTYPE VT_LPWSTR = 31;

struct PROPVARIANT
{
    VARTYPE vt;
    union {
        ULONG ulVal;
        LPWSTR pwszVal;
    };
};

void PropVariantInit(PROPVARIANT* variant);
HRESULT PropVariantClear(PROPVARIANT* variant);

void* CoTaskMemAlloc(size_t count);
void CoTaskMemFree(void* memory);

void OutputDebugStringW(const wchar_t* line);

/// Where OutputDebugStringW sends its lines on this thread; null drops them.
using DebugStringSink = void (*)(const wchar_t* line);
void SetDebugStringSink(DebugStringSink sink);

/// Mutexes that are known by their names within this process. A handle stands for the mutex of its name, and
/// is never closed.
using HANDLE = void*;

constexpr DWORD MUTEX_ALL_ACCESS = 0x1F0001;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_TIMEOUT = 0x102;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

HANDLE CreateMutexW(void* attributes, BOOL initialOwner, const wchar_t* name);
HANDLE OpenMutexW(DWORD access, BOOL inheritHandle, const wchar_t* name);
DWORD WaitForSingleObject(HANDLE mutex, DWORD milliseconds);
BOOL ReleaseMutex(HANDLE mutex);

// NOLINTEND(readability-identifier-naming)
