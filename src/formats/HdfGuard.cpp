#include "formats/HdfGuard.h"

#include "platform/Platform.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

namespace Tav::Imaging::RawImage {

namespace {

/// What the library may still use. Its mutex serves for this, too.
struct Allowance
{
    bool isLimited = false;
    uint64_t heldBytes = 0;
    uint64_t mostBytes = 0;
    uint64_t steps = 0;
    uintptr_t stackTop = 0;
    uint64_t chunkBytes = 0;
    HdfBlocks* blocks = nullptr;
};

Allowance allowance;

/// The largest block that the library needs with any file is the table of its cache, of half a megabyte.
constexpr size_t enoughToClearUp = 0x400000;

HdfReserve* reserve = nullptr;

uintptr_t StackPlace() noexcept
{
    return reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
}

/// True while functions that call themselves have not gone too deep: a block can be said to lie within
/// itself, and a thread of the host may have little stack.
bool HasStack() noexcept
{
    constexpr uintptr_t deepestStack = 0x10000;
    const uintptr_t place = StackPlace();
    return !allowance.isLimited || place > allowance.stackTop || allowance.stackTop - place <= deepestStack;
}

/// Small blocks are refused later: the library needs them to clear up, too.
bool IsAllowed(uint64_t bytes) noexcept
{
    constexpr uint64_t smallBlock = 0x1000;
    const uint64_t most = bytes <= smallBlock ? 2 * allowance.mostBytes : allowance.mostBytes;
    return !allowance.isLimited || bytes <= most - std::min(allowance.heldBytes, most);
}

void Hold(void* memory) noexcept
{
    if (allowance.isLimited && memory)
        allowance.heldBytes += _msize(memory);
}

void Release(void* memory) noexcept
{
    if (allowance.isLimited && memory)
        allowance.heldBytes -= std::min<uint64_t>(allowance.heldBytes, _msize(memory));
}

/// True where something was put by.
bool OpenReserve() noexcept
{
    if (!reserve || reserve->IsOpen())
        return false;
    reserve->Open();
    return true;
}

/// Memory that is clear: some of the library's structures are freed before they have been filled.
void* ClearBlock(size_t bytes) noexcept
{
    const size_t size = std::max<size_t>(bytes, 1);
    void* memory = std::calloc(size, 1);
    if (!memory && OpenReserve())
        memory = std::calloc(size, 1);
    Hold(memory);
    return memory;
}

void* Allocate(size_t count, size_t bytes) noexcept
{
    if ((bytes != 0 && count > SIZE_MAX / bytes) || !IsAllowed(count * bytes))
        return nullptr;
    static_cast<void>(TakeHdfSteps());
    return ClearBlock(count * bytes);
}

/// While it lives, the library looks for attributes.
class AmongAttributes
{
public:
    AmongAttributes() noexcept : before(allowance.blocks && allowance.blocks->ExpectAttributes(true)) {}
    AmongAttributes(const AmongAttributes&) = delete;
    AmongAttributes& operator=(const AmongAttributes&) = delete;
    ~AmongAttributes()
    {
        if (allowance.blocks)
            allowance.blocks->ExpectAttributes(before);
    }

private:
    bool before;
};

} // namespace

HdfGuard::HdfGuard(std::span<const uint8_t> file) : blocks(file)
{
    constexpr uint64_t bytesForAnyFile = 0x4000000;
    constexpr uint64_t stepsForAnyFile = 2000000;
    constexpr uint64_t stepsPerByte = 16;
    allowance = {.isLimited = true,
                 .mostBytes = bytesForAnyFile + 4 * file.size(),
                 .steps = stepsForAnyFile + stepsPerByte * file.size(),
                 .stackTop = StackPlace(),
                 .blocks = &blocks};
}

HdfGuard::~HdfGuard()
{
    allowance = {};
}

HdfReserve::HdfReserve() : memory(std::make_unique_for_overwrite<uint8_t[]>(enoughToClearUp))
{
    reserve = this;
}

HdfReserve::~HdfReserve()
{
    reserve = nullptr;
}

void ExpectHdfChunks(uint64_t chunkBytes, bool areFiltered) noexcept
{
    allowance.chunkBytes = chunkBytes;
    if (allowance.blocks)
        allowance.blocks->ExpectFilters(areFiltered);
}

bool TakeHdfSteps(uint64_t count) noexcept
{
    if (!allowance.isLimited)
        return true;
    if (allowance.steps < count || (reserve && reserve->IsOpen()))
        return false;
    allowance.steps -= count;
    return true;
}

} // namespace Tav::Imaging::RawImage

// The names that the linker gives to the library's calls.
// NOLINTBEGIN(readability-identifier-naming,bugprone-reserved-identifier)
extern "C" {
using namespace Tav::Imaging::RawImage;

void* LumoraHdf_malloc(size_t bytes)
{
    return Allocate(1, bytes);
}

void* LumoraHdf_calloc(size_t count, size_t bytes)
{
    return Allocate(count, bytes);
}

void LumoraHdf_free(void* memory)
{
    Release(memory);
    std::free(memory);
}

void* LumoraHdf_realloc(void* memory, size_t bytes)
{
    if (bytes == 0)
    {
        LumoraHdf_free(memory);
        return nullptr;
    }
    if (!IsAllowed(bytes))
        return nullptr;
    void* const moved = ClearBlock(bytes);
    if (!moved)
        return nullptr;
    if (memory)
        std::memcpy(moved, memory, std::min(bytes, _msize(memory)));
    LumoraHdf_free(memory);
    return moved;
}

char* LumoraHdf_strdup(const char* text)
{
    const size_t bytes = std::strlen(text) + 1;
    void* copy = Allocate(1, bytes);
    return copy ? static_cast<char*>(std::memcpy(copy, text, bytes)) : nullptr;
}

struct H5T_t;
H5T_t* __real_H5T__alloc();

/// Makes every datatype, also one within another: they are decoded by functions that call themselves.
H5T_t* __wrap_H5T__alloc()
{
    return HasStack() ? __real_H5T__alloc() : nullptr;
}

struct H5F_t;
struct H5C_class_t;
void* __real_H5C_protect(H5F_t* file, const H5C_class_t* kind, uint64_t address, void* data, unsigned flags);

/// Looks at a block of metadata, also of those that refer to each other in circles.
void* __wrap_H5C_protect(H5F_t* file, const H5C_class_t* kind, uint64_t address, void* data, unsigned flags)
{
    if (!allowance.isLimited)
        return __real_H5C_protect(file, kind, address, data, flags);
    try
    {
        if (!TakeHdfSteps() || !HasStack() || !allowance.blocks->IsSound(kind, address, data))
            return nullptr;
        void* const object = __real_H5C_protect(file, kind, address, data, flags);
        if (object)
            allowance.blocks->Remember(kind, address, object);
        return object;
    }
    catch (const std::bad_alloc&)
    {
        return nullptr;
    }
}

struct H5S_t;
int __real_H5S_select_deserialize(H5S_t** space, const uint8_t** encoded, size_t encodedBytes);

/// Decodes which samples of another file a virtual dataset shows. We show none, and the library believes any
/// number of dimensions.
int __wrap_H5S_select_deserialize(H5S_t** space, const uint8_t** encoded, size_t encodedBytes)
{
    return allowance.isLimited ? -1 : __real_H5S_select_deserialize(space, encoded, encodedBytes);
}

struct H5O_pline_t;
struct FilterCallback
{
    void* function;
    void* data;
};
int __real_H5Z_pipeline(const H5O_pline_t* filters, unsigned flags, unsigned* mask, int checks,
                        FilterCallback callback, size_t* byteCount, size_t* bufferBytes, void** buffer);

/// Sends a chunk through its filters. What uses the result takes it for a whole chunk.
int __wrap_H5Z_pipeline(const H5O_pline_t* filters, unsigned flags, unsigned* mask, int checks,
                        FilterCallback callback, size_t* byteCount, size_t* bufferBytes, void** buffer)
{
    // A check sum alone has so many bytes.
    constexpr size_t sumBytes = 4;
    if (allowance.isLimited && *byteCount <= sumBytes)
        return -1;
    const int result =
        __real_H5Z_pipeline(filters, flags, mask, checks, callback, byteCount, bufferBytes, buffer);
    const bool isShort = allowance.isLimited && *byteCount < allowance.chunkBytes;
    return result >= 0 && isShort ? -1 : result;
}

// Arrays of chunks. Of those that are not there, however many, nothing else is asked.
struct H5FA_t;
struct H5EA_t;
int H5FA_get_nelmts(const H5FA_t* array, uint64_t* count);
int H5EA_get_nelmts(const H5EA_t* array, uint64_t* count);
int __real_H5FA_iterate(H5FA_t* array, const void* operation, void* data);
int __real_H5EA_iterate(H5EA_t* array, const void* operation, void* data);

int __wrap_H5FA_iterate(H5FA_t* array, const void* operation, void* data)
{
    uint64_t count = 0;
    return H5FA_get_nelmts(array, &count) >= 0 && TakeHdfSteps(count)
               ? __real_H5FA_iterate(array, operation, data)
               : -1;
}

int __wrap_H5EA_iterate(H5EA_t* array, const void* operation, void* data)
{
    uint64_t count = 0;
    return H5EA_get_nelmts(array, &count) >= 0 && TakeHdfSteps(count)
               ? __real_H5EA_iterate(array, operation, data)
               : -1;
}

int __real_H5B2_delete(H5F_t* file, uint64_t address, void* context, void* callback, void* data);

/// Tidies up an index that the file says is empty: that changes nothing in a file that is only read.
int __wrap_H5B2_delete(H5F_t* file, uint64_t address, void* context, void* callback, void* data)
{
    return allowance.isLimited ? 0 : __real_H5B2_delete(file, address, context, callback, data);
}

// The functions that look for attributes in an index, which is like that of a group's members.
struct H5O_ainfo_t;
struct H5A_t;
H5A_t* __real_H5A__dense_open(H5F_t* file, const H5O_ainfo_t* place, const char* name);
int __real_H5A__dense_exists(H5F_t* file, const H5O_ainfo_t* place, const char* name, bool* exists);
int __real_H5A__dense_iterate(H5F_t* file, int64_t location, const H5O_ainfo_t* place, int index, int order,
                              uint64_t skip, uint64_t* last, const void* operation, void* data);

int __real_H5A__get_ainfo(H5F_t* file, void* header, H5O_ainfo_t* place);

int __wrap_H5A__get_ainfo(H5F_t* file, void* header, H5O_ainfo_t* place)
{
    const AmongAttributes scope;
    return __real_H5A__get_ainfo(file, header, place);
}

H5A_t* __wrap_H5A__dense_open(H5F_t* file, const H5O_ainfo_t* place, const char* name)
{
    const AmongAttributes scope;
    return __real_H5A__dense_open(file, place, name);
}

int __wrap_H5A__dense_exists(H5F_t* file, const H5O_ainfo_t* place, const char* name, bool* exists)
{
    const AmongAttributes scope;
    return __real_H5A__dense_exists(file, place, name, exists);
}

int __wrap_H5A__dense_iterate(H5F_t* file, int64_t location, const H5O_ainfo_t* place, int index, int order,
                              uint64_t skip, uint64_t* last, const void* operation, void* data)
{
    const AmongAttributes scope;
    return __real_H5A__dense_iterate(file, location, place, index, order, skip, last, operation, data);
}

int __real_H5AC_mark_entry_dirty(void* entry);

/// Notes that a block has to be written.
int __wrap_H5AC_mark_entry_dirty(void* entry)
{
    return allowance.isLimited ? 0 : __real_H5AC_mark_entry_dirty(entry);
}
}
// NOLINTEND(readability-identifier-naming,bugprone-reserved-identifier)
