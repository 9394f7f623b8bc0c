#pragma once

#include <cstdint>
#include <map>
#include <span>
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

    /// Notes which of the library's objects stands for the block at an address.
    void Remember(const void* kind, uint64_t address, const void* object);

private:
    [[nodiscard]] std::span<const uint8_t> At(uint64_t address) const noexcept;
    [[nodiscard]] bool IsCollectionFinite(std::span<const uint8_t> collection) const noexcept;
    [[nodiscard]] bool HasWholeRecords(std::span<const uint8_t> index) const;
    [[nodiscard]] bool HasRoomForRecords(const void* request, bool isLeaf) const;
    [[nodiscard]] std::vector<uint64_t> RecordsPerNode(std::span<const uint8_t> index) const;

    /// The file from its superblock on, to which all addresses refer.
    std::span<const uint8_t> file;
    uint64_t addressBytes = 0;
    uint64_t lengthBytes = 0;
    /// For each open index, how many records its nodes have room for, by their height above the leaves.
    std::map<const void*, std::vector<uint64_t>> recordsPerNode;
};

} // namespace Tav::Imaging::RawImage
