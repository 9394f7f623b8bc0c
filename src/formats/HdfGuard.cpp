#include "formats/HdfGuard.h"

#include "platform/Platform.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>

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
    /// The file from its superblock on, to which all addresses refer.
    std::span<const uint8_t> file;
    uint64_t lengthBytes = 0;
};

Allowance allowance;

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

/// Small blocks are not refused: the library needs them to clear up, too.
bool IsAllowed(uint64_t bytes) noexcept
{
    constexpr uint64_t smallBlock = 0x1000;
    return !allowance.isLimited || bytes <= smallBlock ||
           bytes <= allowance.mostBytes - std::min(allowance.heldBytes, allowance.mostBytes);
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

/// Memory that is clear: some of the library's structures are freed before they have been filled.
void* Allocate(size_t count, size_t bytes) noexcept
{
    if ((bytes != 0 && count > SIZE_MAX / bytes) || !IsAllowed(count * bytes))
        return nullptr;
    static_cast<void>(TakeHdfStep());
    void* memory = std::calloc(count, bytes);
    Hold(memory);
    return memory;
}

/// The file without what precedes its signature, which the library looks for at 0, 512, 1024, 2048 and so on.
std::span<const uint8_t> FromSuperblock(std::span<const uint8_t> file) noexcept
{
    constexpr std::array<uint8_t, 8> signature = {0x89, 'H', 'D', 'F', '\r', '\n', 0x1A, '\n'};
    for (size_t place = 0; place < file.size(); place = std::max<size_t>(2 * place, 512))
    {
        if (std::ranges::equal(file.subspan(place, std::min(signature.size(), file.size() - place)),
                               signature))
            return file.subspan(place);
    }
    return {};
}

/// How many bytes a length has in the file.
uint64_t LengthBytes(std::span<const uint8_t> file) noexcept
{
    constexpr size_t versionOffset = 8;
    const size_t offset = file.size() > versionOffset && file[versionOffset] < 2 ? 14 : 10;
    return file.size() > offset ? file[offset] : 0;
}

uint64_t LittleEndian(std::span<const uint8_t> bytes) noexcept
{
    uint64_t value = 0;
    for (size_t i = std::min(bytes.size(), sizeof(value)); i-- > 0;)
        value = value << 8 | bytes[i];
    return value;
}

/// False for a collection of variable-length data with free room of no bytes, at which the library would look
/// for ever.
bool IsCollectionFinite(std::span<const uint8_t> collection) noexcept
{
    constexpr uint64_t alignment = 8;
    const auto aligned = [](uint64_t bytes) { return (bytes + alignment - 1) / alignment * alignment; };
    // As many bytes come before the objects as before the contents of each.
    const uint64_t headerBytes = aligned(alignment + allowance.lengthBytes);
    uint64_t place = headerBytes;
    while (place <= collection.size() && collection.size() - place >= headerBytes)
    {
        const auto object = collection.subspan(static_cast<size_t>(place));
        const uint64_t index = LittleEndian(object.first(2));
        const uint64_t bytes =
            LittleEndian(object.subspan(alignment, static_cast<size_t>(allowance.lengthBytes)));
        const uint64_t need = index == 0 ? bytes : headerBytes + aligned(bytes);
        if (need == 0)
            return false;
        if (need > object.size())
            break;
        place += need;
    }
    return true;
}

/// Looks at a block before the library does.
bool IsBlockSound(uint64_t address) noexcept
{
    constexpr std::array<uint8_t, 4> collectionSignature = {'G', 'C', 'O', 'L'};
    if (!allowance.isLimited || address >= allowance.file.size() ||
        allowance.file.size() - address < collectionSignature.size())
        return true;
    const auto block = allowance.file.subspan(static_cast<size_t>(address));
    return !std::ranges::equal(block.first(collectionSignature.size()), collectionSignature) ||
           IsCollectionFinite(block);
}

} // namespace

HdfGuard::HdfGuard(std::span<const uint8_t> file) noexcept
{
    constexpr uint64_t bytesForAnyFile = 0x4000000;
    constexpr uint64_t stepsForAnyFile = 10000000;
    const std::span<const uint8_t> addressed = FromSuperblock(file);
    allowance = {.isLimited = true,
                 .mostBytes = bytesForAnyFile + 4 * file.size(),
                 .steps = stepsForAnyFile + 4 * file.size(),
                 .stackTop = StackPlace(),
                 .file = addressed,
                 .lengthBytes = LengthBytes(addressed)};
}

HdfGuard::~HdfGuard()
{
    allowance.isLimited = false;
}

void ExpectHdfChunks(uint64_t chunkBytes) noexcept
{
    allowance.chunkBytes = chunkBytes;
}

bool TakeHdfStep() noexcept
{
    if (!allowance.isLimited)
        return true;
    if (allowance.steps == 0)
        return false;
    --allowance.steps;
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

void* LumoraHdf_realloc(void* memory, size_t bytes)
{
    if (!IsAllowed(bytes))
        return nullptr;
    const size_t oldBytes = memory ? _msize(memory) : 0;
    Release(memory);
    auto* grown = static_cast<uint8_t*>(std::realloc(memory, bytes));
    Hold(grown ? grown : memory);
    if (grown && bytes > oldBytes)
        std::memset(grown + oldBytes, 0, bytes - oldBytes);
    return grown;
}

void LumoraHdf_free(void* memory)
{
    Release(memory);
    std::free(memory);
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
    return TakeHdfStep() && HasStack() && IsBlockSound(address)
               ? __real_H5C_protect(file, kind, address, data, flags)
               : nullptr;
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
    const int result =
        __real_H5Z_pipeline(filters, flags, mask, checks, callback, byteCount, bufferBytes, buffer);
    const bool isShort = allowance.isLimited && *byteCount < allowance.chunkBytes;
    return result >= 0 && isShort ? -1 : result;
}

int __real_H5B2_delete(H5F_t* file, uint64_t address, void* context, void* callback, void* data);

/// Tidies up an index that the file says is empty: that changes nothing in a file that is only read.
int __wrap_H5B2_delete(H5F_t* file, uint64_t address, void* context, void* callback, void* data)
{
    return allowance.isLimited ? 0 : __real_H5B2_delete(file, address, context, callback, data);
}

int __real_H5AC_mark_entry_dirty(void* entry);

/// Notes that a block has to be written.
int __wrap_H5AC_mark_entry_dirty(void* entry)
{
    return allowance.isLimited ? 0 : __real_H5AC_mark_entry_dirty(entry);
}
}
// NOLINTEND(readability-identifier-naming,bugprone-reserved-identifier)
