#include "formats/hdf/inside/HdfBandReader.h"

#include "formats/hdf/inside/HdfAccess.h"

#include <cstdlib>
#include <cstring>

namespace Tav::Imaging::RawImage {

namespace {

constexpr uint64_t bandBytes = 0x400000;
constexpr uint64_t mostChunks = 1024;

uint64_t Product(const hsize_t* lengths, int begin, int end)
{
    uint64_t product = 1;
    for (int i = begin; i < end; ++i)
        product *= lengths[i];
    return product;
}

} // namespace

uint64_t HdfPart::Count() const
{
    return dimensions < 1 ? 0 : Product(lengths, 0, dimensions);
}

HdfPart WholeHdfDataset(hid_t location, const char* path)
{
    HdfPart part;
    const HdfDataSet dataset{H5Dopen2(location, path, H5P_DEFAULT)};
    const HdfDataSpace space{H5Dget_space(dataset.id)};
    if (H5Sget_simple_extent_npoints(space.id) > 0)
        part.dimensions = H5Sget_simple_extent_dims(space.id, part.lengths, nullptr);
    return part;
}

HdfPart HdfSeriesFrame(uint32_t height, uint32_t width, uint32_t frame)
{
    return {.dimensions = 3, .first = {0, 0, frame}, .lengths = {height, width, 1}};
}

HdfBandReader::HdfBandReader(hid_t location, const char* path, const HdfPart& chosen, PixelType pixelType)
    : part(chosen), type(HdfMemoryType(pixelType)), plan(PlanOf(location, path, part, H5Tget_size(type))),
      dataset(Open(location, path, plan)), space(H5Dget_space(dataset.id)),
      band(static_cast<uint8_t*>(malloc(static_cast<size_t>(
          plan.rows * Product(part.lengths, plan.dimension + 1, part.dimensions) * H5Tget_size(type)))))
{}

HdfBandReader::~HdfBandReader()
{
    free(band);
}

HdfBandReader::Plan HdfBandReader::PlanOf(hid_t location, const char* path, const HdfPart& part,
                                          size_t sampleBytes)
{
    Plan plan;
    uint64_t rowBytes = Product(part.lengths, 1, part.dimensions) * sampleBytes;
    while (plan.dimension + 1 < part.dimensions && rowBytes > bandBytes)
        rowBytes /= part.lengths[++plan.dimension];
    plan.rows = bandBytes / rowBytes;

    const HdfDataSet dataset{H5Dopen2(location, path, H5P_DEFAULT)};
    const HdfPropertyList creation{H5Dget_create_plist(dataset.id)};
    hsize_t chunk[H5S_MAX_RANK] = {};
    if (H5Pget_layout(creation.id) == H5D_CHUNKED &&
        H5Pget_chunk(creation.id, H5S_MAX_RANK, chunk) == part.dimensions)
    {
        const hsize_t chunkRows = chunk[plan.dimension];
        uint64_t chunksInRow = 1;
        for (int i = plan.dimension + 1; i < part.dimensions; ++i)
            chunksInRow *= (part.lengths[i] + chunk[i] - 1) / chunk[i];
        if (chunkRows <= plan.rows)
        {
            // Each chunk of a band takes the library some memory of its own.
            const uint64_t rowsOfChunks = plan.rows / chunkRows;
            const uint64_t most = mostChunks / chunksInRow + 1;
            plan.rows = chunkRows * (rowsOfChunks < most ? rowsOfChunks : most);
        }
        else if (H5Pget_nfilters(creation.id) == 0)
        {
            plan.cacheBytes = 0;
        }
        else
        {
            // The library asks for a hundred times as many places as chunks, so that none takes another's.
            const HdfDataType stored{H5Dget_type(dataset.id)};
            plan.cacheSlots = static_cast<size_t>(100 * chunksInRow + 1);
            plan.cacheBytes = static_cast<size_t>(chunksInRow * Product(chunk, 0, part.dimensions) *
                                                  H5Tget_size(stored.id));
        }
    }
    if (plan.rows > part.lengths[plan.dimension])
        plan.rows = part.lengths[plan.dimension];
    return plan;
}

hid_t HdfBandReader::Open(hid_t location, const char* path, const Plan& plan)
{
    const HdfPropertyList access{H5Pcreate(H5P_DATASET_ACCESS)};
    H5Pset_chunk_cache(access.id, plan.cacheSlots, plan.cacheBytes, H5D_CHUNK_CACHE_W0_DEFAULT);
    return H5Dopen2(location, path, access.id);
}

int32_t HdfBandReader::ReadNext()
{
    if (isAtEnd)
        return 0;
    hsize_t start[H5S_MAX_RANK];
    hsize_t count[H5S_MAX_RANK];
    for (int i = 0; i < part.dimensions; ++i)
    {
        start[i] = part.first[i] + position[i];
        count[i] = i < plan.dimension ? 1 : part.lengths[i] - position[i];
    }
    if (count[plan.dimension] > plan.rows)
        count[plan.dimension] = plan.rows;
    const HdfDataSpace memory{H5Screate_simple(part.dimensions, count, nullptr)};
    if (!band)
        return -1;
    const size_t bytes = static_cast<size_t>(Product(count, 0, part.dimensions)) * H5Tget_size(type);
    // Where there is neither a chunk nor a value to fill in, the library leaves what is there.
    memset(band, 0, bytes);
    if (H5Sselect_hyperslab(space.id, H5S_SELECT_SET, start, nullptr, count, nullptr) < 0 ||
        H5Dread(dataset.id, type, memory.id, space.id, H5P_DEFAULT, band) < 0)
        return -1;
    GoToNextBand(count[plan.dimension]);
    return static_cast<int32_t>(bytes);
}

void HdfBandReader::GoToNextBand(hsize_t rows)
{
    position[plan.dimension] += rows;
    for (int i = plan.dimension; position[i] == part.lengths[i]; --i)
    {
        if (i == 0)
        {
            isAtEnd = true;
            return;
        }
        position[i] = 0;
        ++position[i - 1];
    }
}

} // namespace Tav::Imaging::RawImage
