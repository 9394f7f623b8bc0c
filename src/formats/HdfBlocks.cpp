#include "formats/HdfBlocks.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

// How the library describes its kinds of blocks: collections of variable-length data, heaps of names, heaps
// of links and attributes, and the second kind of index.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" const uint8_t H5AC_GHEAP[];
extern "C" const uint8_t H5AC_LHEAP_PRFX[];
extern "C" const uint8_t H5AC_FHEAP_HDR[];
extern "C" const uint8_t H5AC_BT2_HDR[];
extern "C" const uint8_t H5AC_BT2_INT[];
extern "C" const uint8_t H5AC_BT2_LEAF[];
extern "C" const uint8_t H5AC_EARRAY_HDR[];
extern "C" const uint8_t H5AC_FARRAY_HDR[];
// NOLINTEND(readability-identifier-naming)

namespace Tav::Imaging::RawImage {

namespace {

/// Where the second kind of index says of what kind its records are, and how large.
constexpr size_t kindOffset = 5;
constexpr size_t nodeBytesOffset = 6;
constexpr size_t recordBytesOffset = 10;
constexpr size_t heightOffset = 12;
constexpr size_t indexBytes = 14;

constexpr uint32_t mostDimensions = 32;

/// What the library's functions for the beginning of an index or of an array of chunks are told.
struct IndexRequest
{
    const void* file;
    uint64_t address;
    /// Nothing for attributes and links; the file for what belongs to a heap; for chunks, this.
    const void* context;
};
struct ChunkContext
{
    const void* file;
    uint32_t chunkBytes;
    uint32_t dimensions;
};

std::span<const uint8_t> FromSuperblock(std::span<const uint8_t> file) noexcept
{
    // The library looks for the signature at 0, 512, 1024, 2048 and so on.
    constexpr std::array<uint8_t, 8> signature = {0x89, 'H', 'D', 'F', '\r', '\n', 0x1A, '\n'};
    for (size_t place = 0; place < file.size(); place = std::max<size_t>(2 * place, 512))
    {
        const auto rest = file.subspan(place);
        if (rest.size() >= signature.size() && std::ranges::equal(rest.first(signature.size()), signature))
            return rest;
    }
    return {};
}

uint64_t LittleEndian(std::span<const uint8_t> bytes) noexcept
{
    uint64_t value = 0;
    for (size_t i = std::min(bytes.size(), sizeof(value)); i-- > 0;)
        value = value << 8 | bytes[i];
    return value;
}

/// How many bytes it takes to store numbers up to a limit.
uint64_t BytesFor(uint64_t limit) noexcept
{
    // What type the width has depends on the library's age.
    return limit == 0 ? 1 : static_cast<uint64_t>(std::bit_width(limit) - 1) / 8 + 1;
}

/// True for a heap of links or attributes whose blocks have to be unpacked. Nobody packs them, and a block
/// may turn out shorter than the library takes it to be.
bool IsFilteredHeap(std::span<const uint8_t> heap) noexcept
{
    // Signature, version and the size of an identifier come first.
    constexpr size_t filterBytesOffset = 7;
    return heap.size() >= filterBytesOffset + 2 && LittleEndian(heap.subspan(filterBytesOffset, 2)) != 0;
}

} // namespace

HdfBlocks::HdfBlocks(std::span<const uint8_t> wholeFile) : file(FromSuperblock(wholeFile))
{
    constexpr size_t versionOffset = 8;
    constexpr size_t superblockBytes = 16;
    if (file.size() < superblockBytes)
        return;
    const size_t offset = file[versionOffset] < 2 ? 13 : 9;
    addressBytes = file[offset];
    lengthBytes = file[offset + 1];
}

bool HdfBlocks::IsSound(const void* kind, uint64_t address, const void* request) const
{
    const auto block = At(address);
    if (kind == H5AC_GHEAP)
        return IsCollectionFinite(block);
    if (kind == H5AC_LHEAP_PRFX)
        return IsFreeListFinite(block);
    if (kind == H5AC_FHEAP_HDR)
        return !IsFilteredHeap(block);
    if (kind == H5AC_BT2_HDR)
        return HasExpectedRecords(block, request) && !RecordsPerNode(block).empty();
    if (kind == H5AC_EARRAY_HDR || kind == H5AC_FARRAY_HDR)
        return HasExpectedElements(block, request);
    if (kind == H5AC_BT2_LEAF || kind == H5AC_BT2_INT)
        return HasRoomForRecords(request, kind == H5AC_BT2_LEAF);
    return true;
}

void HdfBlocks::Remember(const void* kind, uint64_t address, const void* object)
{
    if (kind == H5AC_BT2_HDR)
        recordsPerNode[object] = RecordsPerNode(At(address));
}

std::span<const uint8_t> HdfBlocks::At(uint64_t address) const noexcept
{
    return address < file.size() ? file.subspan(static_cast<size_t>(address)) : std::span<const uint8_t>{};
}

bool HdfBlocks::IsCollectionFinite(std::span<const uint8_t> collection) const noexcept
{
    // Free room of no bytes is where the library would stay for ever.
    constexpr uint64_t alignment = 8;
    const auto aligned = [](uint64_t bytes) { return (bytes + alignment - 1) / alignment * alignment; };
    // As many bytes come before the objects as before the contents of each.
    const uint64_t headerBytes = aligned(alignment + lengthBytes);
    if (collection.size() < headerBytes)
        return true;
    const uint64_t collectionBytes =
        LittleEndian(collection.subspan(alignment, static_cast<size_t>(lengthBytes)));
    collection =
        collection.first(static_cast<size_t>(std::min<uint64_t>(collectionBytes, collection.size())));
    uint64_t place = headerBytes;
    while (place <= collection.size() && collection.size() - place >= headerBytes)
    {
        const auto object = collection.subspan(static_cast<size_t>(place));
        const uint64_t index = LittleEndian(object.first(2));
        const uint64_t bytes = LittleEndian(object.subspan(alignment, static_cast<size_t>(lengthBytes)));
        const uint64_t need = index == 0 ? bytes : headerBytes + aligned(bytes);
        if (need == 0)
            return false;
        if (need > object.size())
            break;
        place += need;
    }
    return true;
}

bool HdfBlocks::IsFreeListFinite(std::span<const uint8_t> heap) const noexcept
{
    // Signature and version come first, then the size of the names, their first free place and their address.
    // A free place holds the next one and its own size. The library follows them in circles, and before the
    // names.
    constexpr size_t sizeOffset = 8;
    constexpr uint64_t lastPlace = 1;
    if (lengthBytes == 0 || lengthBytes > sizeof(uint64_t) || addressBytes > sizeof(uint64_t))
        return false;
    const size_t freeOffset = sizeOffset + static_cast<size_t>(lengthBytes);
    const size_t addressOffset = freeOffset + static_cast<size_t>(lengthBytes);
    if (heap.size() < addressOffset + addressBytes)
        return false;
    const auto number = [](std::span<const uint8_t> block, uint64_t offset, uint64_t bytes) {
        return LittleEndian(block.subspan(static_cast<size_t>(offset), static_cast<size_t>(bytes)));
    };
    const uint64_t size = number(heap, sizeOffset, lengthBytes);
    const auto names = At(number(heap, addressOffset, addressBytes));
    uint64_t place = number(heap, freeOffset, lengthBytes);
    if (size == 0 || place == lastPlace)
        return true;
    const uint64_t placeBytes = 2 * lengthBytes;
    if (size > names.size() || size < placeBytes)
        return false;
    for (uint64_t count = 0; count <= size / placeBytes; ++count)
    {
        if (place == lastPlace)
            return true;
        if (place > size - placeBytes)
            return false;
        place = number(names, place, lengthBytes);
    }
    return false;
}

bool HdfBlocks::HasExpectedRecords(std::span<const uint8_t> index, const void* request) const noexcept
{
    if (index.size() < indexBytes || !request)
        return false;
    // Large objects of a heap, also filtered, and without indirection; links by name and by time; shared
    // messages; attributes by name and by time.
    const std::array<uint64_t, 10> leastBytes = {0,
                                                 addressBytes + 2 * lengthBytes,
                                                 addressBytes + 3 * lengthBytes + 4,
                                                 addressBytes + lengthBytes,
                                                 addressBytes + 2 * lengthBytes + 4,
                                                 4 + 7,
                                                 8 + 7,
                                                 0,
                                                 8 + 1 + 4 + 4,
                                                 8 + 1 + 4};
    constexpr uint8_t firstOfLinks = 5;
    constexpr uint8_t firstOfAttributes = 8;
    constexpr uint8_t chunks = 10;
    const uint8_t kind = index[kindOffset];
    const uint64_t recordBytes = LittleEndian(index.subspan(recordBytesOffset, 2));
    IndexRequest asked{};
    std::memcpy(&asked, request, sizeof(asked));
    if (asked.context && asked.context != asked.file)
    {
        ChunkContext context{};
        std::memcpy(&context, asked.context, sizeof(context));
        return kind == (areChunksFiltered ? chunks + 1 : chunks) && context.dimensions <= mostDimensions &&
               recordBytes >= ChunkRecordBytes(context.chunkBytes) + 8 * uint64_t{context.dimensions};
    }
    const uint8_t first = asked.context ? 1 : isInAttributes ? firstOfAttributes : firstOfLinks;
    const uint8_t count = asked.context ? 4 : 2;
    return kind >= first && kind < first + count && recordBytes >= leastBytes[kind];
}

bool HdfBlocks::HasExpectedElements(std::span<const uint8_t> array, const void* request) const noexcept
{
    // Signature and version come first.
    constexpr size_t elementBytesOffset = 6;
    if (array.size() <= elementBytesOffset || !request)
        return false;
    IndexRequest asked{};
    std::memcpy(&asked, request, sizeof(asked));
    if (!asked.context)
        return false;
    ChunkContext context{};
    std::memcpy(&context, asked.context, offsetof(ChunkContext, dimensions));
    return array[kindOffset] == (areChunksFiltered ? 1 : 0) &&
           array[elementBytesOffset] >= ChunkRecordBytes(context.chunkBytes);
}

uint64_t HdfBlocks::ChunkRecordBytes(uint32_t chunkBytes) const noexcept
{
    // A filter may make a chunk larger.
    return addressBytes + (areChunksFiltered ? 1 + BytesFor(chunkBytes) + 4 : 0);
}

std::vector<uint64_t> HdfBlocks::RecordsPerNode(std::span<const uint8_t> index) const
{
    constexpr uint64_t prefixBytes = 10;
    constexpr uint64_t greatestHeight = 16;
    constexpr uint64_t mostRecords = uint64_t{1} << 40;
    if (index.size() < indexBytes)
        return {};
    const uint64_t nodeBytes = LittleEndian(index.subspan(nodeBytesOffset, 4));
    const uint64_t recordBytes = LittleEndian(index.subspan(recordBytesOffset, 2));
    const uint64_t height = LittleEndian(index.subspan(heightOffset, 2));
    if (recordBytes == 0 || nodeBytes < prefixBytes + recordBytes || height > greatestHeight)
        return {};

    std::vector<uint64_t> room = {(nodeBytes - prefixBytes) / recordBytes};
    uint64_t below = room.front();
    for (uint64_t level = 1; level <= height; ++level)
    {
        const uint64_t pointerBytes =
            addressBytes + BytesFor(room.front()) + (level == 1 ? 0 : BytesFor(below));
        if (nodeBytes < prefixBytes + recordBytes + 2 * pointerBytes || below > mostRecords)
            return {};
        room.push_back((nodeBytes - prefixBytes - pointerBytes) / (recordBytes + pointerBytes));
        below = (room.back() + 1) * below + room.back();
    }
    return room;
}

bool HdfBlocks::HasRoomForRecords(const void* request, bool isLeaf) const
{
    // What the library's functions for the nodes of an index are told.
    struct NodeRequest
    {
        const void* file;
        const void* index;
        const void* parent;
        uint16_t recordCount;
        uint16_t height;
    };
    static_assert(offsetof(NodeRequest, height) == 26);
    if (!request)
        return false;
    NodeRequest node{};
    std::memcpy(&node, request, isLeaf ? offsetof(NodeRequest, height) : offsetof(NodeRequest, height) + 2);
    const auto index = recordsPerNode.find(node.index);
    return index != recordsPerNode.end() && node.height < index->second.size() &&
           node.recordCount <= index->second[node.height];
}

} // namespace Tav::Imaging::RawImage
