#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <utility>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Looks at blocks of an HDF5 file's metadata before the library does, for what the library trusts.
class HdfBlocks
{
public:
    /// Takes the whole file, which must outlive this object.
    explicit HdfBlocks(std::span<const uint8_t> wholeFile);

    /// False for a block that must not reach the library. `kind` and `request` are what the library's own
    /// function for blocks of this kind is told, besides the address.
    [[nodiscard]] bool IsSound(const void* kind, uint64_t address, const void* request) const;

    /// Tells whether the chunks of the dataset that is read next have been through filters.
    void ExpectFilters(bool areFiltered) noexcept { areChunksFiltered = areFiltered; }

    /// Tells whether the library looks for attributes, and not for members of a group; what was told before.
    bool ExpectAttributes(bool areAttributes) noexcept
    {
        return std::exchange(isInAttributes, areAttributes);
    }

    /// Notes which of the library's objects stands for the block at an address.
    void Remember(const void* kind, uint64_t address, const void* object);

private:
    [[nodiscard]] std::span<const uint8_t> At(uint64_t address) const noexcept;
    [[nodiscard]] bool IsCollectionFinite(std::span<const uint8_t> collection) const noexcept;
    [[nodiscard]] bool IsFreeListFinite(std::span<const uint8_t> heap) const noexcept;
    [[nodiscard]] bool HasExpectedRecords(std::span<const uint8_t> index, const void* request) const noexcept;
    [[nodiscard]] bool HasExpectedElements(std::span<const uint8_t> array,
                                           const void* request) const noexcept;
    [[nodiscard]] uint64_t ChunkRecordBytes(uint32_t chunkBytes) const noexcept;
    [[nodiscard]] bool HasRoomForRecords(const void* request, bool isLeaf) const;
    [[nodiscard]] std::vector<uint64_t> RecordsPerNode(std::span<const uint8_t> index) const;

    /// The file from its superblock on, to which all addresses refer.
    std::span<const uint8_t> file;
    uint64_t addressBytes = 0;
    uint64_t lengthBytes = 0;
    bool areChunksFiltered = false;
    bool isInAttributes = false;
    /// For each open index, how many records its nodes have room for, by their height above the leaves.
    std::map<const void*, std::vector<uint64_t>> recordsPerNode;
};

} // namespace Tav::Imaging::RawImage
