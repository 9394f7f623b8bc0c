#pragma once

#include "core/PixelType.h"
#include "formats/hdf/inside/HdfObject.h"

#include <cstdint>

namespace Tav::Imaging::RawImage {

/// A part of a dataset: `lengths` samples from `first` on in each dimension.
struct HdfPart
{
    int dimensions = -1;
    hsize_t first[H5S_MAX_RANK] = {};
    hsize_t lengths[H5S_MAX_RANK] = {};

    [[nodiscard]] uint64_t Count() const;
};

[[nodiscard]] HdfPart WholeHdfDataset(hid_t location, const char* path);

/// One frame of a series of dimensions (height, width, frames).
[[nodiscard]] HdfPart HdfSeriesFrame(uint32_t height, uint32_t width, uint32_t frame);

/// Reads samples in their order, a band of rows at a time, so that the sandbox never holds a large frame.
class HdfBandReader
{
public:
    /// The samples are converted to a pixel type.
    HdfBandReader(hid_t location, const char* path, const HdfPart& part, PixelType pixelType);
    HdfBandReader(const HdfBandReader&) = delete;
    HdfBandReader& operator=(const HdfBandReader&) = delete;
    ~HdfBandReader();

    /// Reads the next band. The number of its bytes; 0 after the last band, negative on failure.
    [[nodiscard]] int32_t ReadNext();

    /// The band that has been read.
    [[nodiscard]] const uint8_t* Band() const { return band; }

private:
    /// A band is at most so many rows in one dimension, one row in those before, and all in those behind.
    struct Plan
    {
        int dimension = 0;
        hsize_t rows = 1;
        /// What has been through filters is unpacked whole. Where a chunk goes on in the next band, those
        /// that lie beside each other are kept; others are read where they lie.
        size_t cacheBytes = 0x100000;
        size_t cacheSlots = 521;
    };

    static Plan PlanOf(hid_t location, const char* path, const HdfPart& part, size_t sampleBytes);
    static hid_t Open(hid_t location, const char* path, const Plan& plan);
    void GoToNextBand(hsize_t rows);

    const HdfPart part;
    const hid_t type;
    const Plan plan;
    const HdfDataSet dataset;
    const HdfDataSpace space;
    uint8_t* const band;
    hsize_t position[H5S_MAX_RANK] = {};
    bool isAtEnd = false;
};

} // namespace Tav::Imaging::RawImage
