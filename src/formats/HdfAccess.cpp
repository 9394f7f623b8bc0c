#include "formats/HdfAccess.h"

#include "core/Diagnostics.h"
#include "core/StreamReader.h"
#include "formats/HdfGuard.h"
#include "formats/HdfObject.h"

#include <hdf5.h>
#include <hdf5_hl.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <new>
#include <string_view>

namespace Tav::Imaging::RawImage {

namespace {

/// The bytes of one chunk in memory; 0 for a dataset that has no chunks.
uint64_t ChunkBytes(hid_t dataset, hid_t creation)
{
    std::array<hsize_t, H5S_MAX_RANK> sides{};
    const int rank =
        H5Pget_layout(creation) == H5D_CHUNKED ? H5Pget_chunk(creation, H5S_MAX_RANK, sides.data()) : 0;
    if (rank <= 0)
        return 0;
    const HdfDataType type{H5Dget_type(dataset)};
    // A chunk has less than 2^32 elements.
    uint64_t bytes = H5Tget_size(type.id);
    for (int i = 0; i < rank; ++i)
        bytes *= sides[static_cast<size_t>(i)];
    return bytes;
}

/// Says which chunks the library will meet in a dataset; their size in bytes, 0 where there are none.
uint64_t ExpectChunks(hid_t dataset)
{
    const HdfPropertyList creation{H5Dget_create_plist(dataset)};
    const uint64_t chunkBytes = ChunkBytes(dataset, creation.id);
    ExpectHdfChunks(chunkBytes, H5Pget_nfilters(creation.id) > 0);
    return chunkBytes;
}

/// False for filters that read more than there is when their input is too short: those that pack samples in
/// bits, and a check sum of what another filter has unpacked.
bool HasSafeFilters(hid_t dataset)
{
    const HdfPropertyList creation{H5Dget_create_plist(dataset)};
    const int count = H5Pget_nfilters(creation.id);
    for (int i = 0; i < count; ++i)
    {
        unsigned flags = 0;
        unsigned configuration = 0;
        size_t valueCount = 0;
        const H5Z_filter_t filter = H5Pget_filter2(creation.id, static_cast<unsigned>(i), &flags, &valueCount,
                                                   nullptr, 0, nullptr, &configuration);
        if (filter != H5Z_FILTER_DEFLATE && filter != H5Z_FILTER_SHUFFLE &&
            (filter != H5Z_FILTER_FLETCHER32 || i + 1 < count))
            return false;
    }
    return count >= 0;
}

/// How many chunks a dataset is divided into, present or not; as many as can be counted where it is more.
uint64_t ChunkCount(hid_t dataset)
{
    const HdfPropertyList creation{H5Dget_create_plist(dataset)};
    const HdfDataSpace space{H5Dget_space(dataset)};
    std::array<hsize_t, H5S_MAX_RANK> sides{};
    std::array<hsize_t, H5S_MAX_RANK> chunkSides{};
    const int rank = H5Sget_simple_extent_dims(space.id, sides.data(), nullptr);
    if (rank < 0 || H5Pget_chunk(creation.id, H5S_MAX_RANK, chunkSides.data()) != rank)
        return 0;
    uint64_t count = 1;
    for (size_t i = 0; i < static_cast<size_t>(rank); ++i)
    {
        const hsize_t chunkSide = std::max<hsize_t>(chunkSides[i], 1);
        const uint64_t along = sides[i] / chunkSide + (sides[i] % chunkSide == 0 ? 0 : 1);
        count = along != 0 && count > UINT64_MAX / along ? UINT64_MAX : count * along;
    }
    return count;
}

/// Makes ready to read a dataset, whose chunks are unpacked whole. False where one is larger than any file
/// that is opened: it serves to exhaust memory only.
bool PrepareChunks(hid_t dataset)
{
    constexpr uint64_t largestChunk = 0x20000000;
    return ExpectChunks(dataset) <= largestChunk && HasSafeFilters(dataset);
}

} // namespace

hid_t OpenHdfFileImage(IStream* stream, uint64_t size, std::vector<uint8_t>& image)
{
    if (size > std::numeric_limits<uint32_t>::max())
    {
        WriteDiagnostic(L"HDF: ", L"File is too large (>4GB)");
        return -1;
    }
    try
    {
        image.assign(size, 0);
    }
    catch (const std::bad_alloc&)
    {
        WriteDiagnostic(L"HDF: ", L"Could not allocated enough memory");
        return -1;
    }
    if (!ReadStreamAt(stream, 0, image.data(), static_cast<uint32_t>(size)))
        return -1;
    const HdfGuard guard{image};
    return H5LTopen_file_image(image.data(), image.size(),
                               H5LT_FILE_IMAGE_DONT_COPY | H5LT_FILE_IMAGE_DONT_RELEASE);
}

bool ReadHdfStringDataset(hid_t location, const std::string& name, std::string& value)
{
    const HdfDataSet dataset{H5Dopen2(location, name.c_str(), H5P_DEFAULT)};
    if (!dataset.IsOpen() || IsStoredElsewhere(dataset.id) || !PrepareChunks(dataset.id))
        return false;
    const HdfDataSpace space{H5Dget_space(dataset.id)};
    hsize_t count = 0;
    if (!space.IsOpen() || H5Sget_simple_extent_ndims(space.id) != 1 ||
        H5Sget_simple_extent_dims(space.id, &count, nullptr) < 0 || count == 0)
        return false;

    // Only the first string is of use, and many could all stand for one long text.
    const hsize_t first = 0;
    const hsize_t one = 1;
    const HdfDataSpace memorySpace{H5Screate_simple(1, &one, nullptr)};
    const HdfDataType type{H5Tcopy(H5T_C_S1)};
    char* text = nullptr;
    const bool isRead =
        memorySpace.IsOpen() && H5Tset_size(type.id, H5T_VARIABLE) >= 0 &&
        H5Sselect_hyperslab(space.id, H5S_SELECT_SET, &first, nullptr, &one, nullptr) >= 0 &&
        H5Dread(dataset.id, type.id, memorySpace.id, space.id, H5P_DEFAULT, static_cast<void*>(&text)) >= 0;
    if (isRead)
        value = text ? text : "";
    if (text)
        H5Dvlen_reclaim(type.id, memorySpace.id, H5P_DEFAULT, static_cast<void*>(&text));
    return isRead;
}

PixelType NativePixelType(hid_t dataset)
{
    const HdfDataType type{H5Dget_type(dataset)};
    const HdfDataType native{H5Tget_native_type(type.id, H5T_DIR_ASCEND)};
    if (!native.IsOpen())
        return PixelType::Unknown;
    struct NativeType
    {
        hid_t id;
        PixelType pixelType;
    };
    const std::array<NativeType, 8> known = {{
        {H5T_NATIVE_UCHAR, PixelType::UInt8},
        {H5T_NATIVE_USHORT, PixelType::UInt16},
        {H5T_NATIVE_UINT, PixelType::UInt32},
        {H5T_NATIVE_SCHAR, PixelType::Int8},
        {H5T_NATIVE_SHORT, PixelType::Int16},
        {H5T_NATIVE_INT, PixelType::Int32},
        {H5T_NATIVE_FLOAT, PixelType::Float32},
        {H5T_NATIVE_DOUBLE, PixelType::Double64},
    }};
    for (const NativeType& candidate : known)
    {
        if (H5Tequal(native.id, candidate.id) > 0)
            return candidate.pixelType;
    }
    return PixelType::Unknown;
}

bool IsStoredElsewhere(hid_t dataset)
{
    const HdfPropertyList creation{H5Dget_create_plist(dataset)};
    // What comes next may look into the index of chunks.
    ExpectChunks(dataset);
    return H5Pget_layout(creation.id) == H5D_VIRTUAL || H5Pget_external_count(creation.id) != 0;
}

uint64_t HdfStoredBytes(hid_t dataset)
{
    // Where all chunks follow each other without an index, the library adds them up one by one.
    H5D_chunk_index_t index = H5D_CHUNK_IDX_BTREE;
    const bool isCounted = H5Dget_chunk_index_type(dataset, &index) >= 0 && index == H5D_CHUNK_IDX_NONE;
    if (isCounted && !TakeHdfSteps(ChunkCount(dataset)))
        return 0;
    return H5Dget_storage_size(dataset);
}

bool ReadHdfDataset(hid_t dataset, hid_t memoryType, uint64_t elementCount, void* buffer)
{
    const HdfDataSpace space{H5Dget_space(dataset)};
    const hssize_t count = space.IsOpen() ? H5Sget_simple_extent_npoints(space.id) : -1;
    return count >= 0 && static_cast<uint64_t>(count) == elementCount && PrepareChunks(dataset) &&
           H5Dread(dataset, memoryType, H5S_ALL, H5S_ALL, H5P_DEFAULT, buffer) >= 0;
}

bool ReadHdfSeriesFrame(hid_t location, const HdfImageEntry& entry, uint8_t* buffer)
{
    const HdfDataSet dataset{H5Dopen2(location, entry.path.c_str(), H5P_DEFAULT)};
    if (!dataset.IsOpen() || !PrepareChunks(dataset.id))
        return false;
    const HdfDataType type{H5Dget_type(dataset.id)};
    const HdfDataType native{H5Tget_native_type(type.id, H5T_DIR_ASCEND)};
    const HdfDataSpace space{H5Dget_space(dataset.id)};
    const std::array<hsize_t, 3> start = {0, 0, entry.frameInSeries};
    const std::array<hsize_t, 3> count = {entry.height, entry.width, 1};
    if (!native.IsOpen() || !space.IsOpen() || H5Sselect_none(space.id) < 0 ||
        H5Sselect_hyperslab(space.id, H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr) < 0)
        return false;
    const HdfDataSpace memorySpace{H5Screate_simple(3, count.data(), nullptr)};
    return memorySpace.IsOpen() &&
           H5Dread(dataset.id, native.id, memorySpace.id, space.id, H5P_DEFAULT, buffer) >= 0;
}

bool IsThumbnailPath(const std::string& path)
{
    constexpr std::string_view thumbnail = "/thumbnail.jpg";
    return path.size() == thumbnail.size() && ToLower(path) == thumbnail;
}

} // namespace Tav::Imaging::RawImage
