// What the host can call. What it gets back means nothing until it has checked it: pointers are places in
// the sandbox's memory.

#include "formats/hdf/inside/HdfAccess.h"
#include "formats/hdf/inside/HdfBandReader.h"
#include "formats/hdf/inside/HdfExamination.h"
#include "formats/hdf/inside/HdfWalk.h"

#include <cstdlib>
#include <cstring>

using namespace Tav::Imaging::RawImage;

namespace {

// One file for one sandbox: it is never closed, for the sandbox goes as a whole.
hid_t file = H5I_INVALID_HID;
HdfWalk* walk = nullptr;
HdfBandReader* bands = nullptr;
HdfCandidate candidate;
char argument[longestHdfPath + 1];

int64_t BeginReading(const HdfPart& part, uint32_t pixelType)
{
    delete bands;
    bands = nullptr;
    if (part.Count() == 0)
        return -1;
    bands = new HdfBandReader{file, argument, part, static_cast<PixelType>(pixelType)};
    return static_cast<int64_t>(part.Count());
}

} // namespace

// Memory that has run out ends the sandbox.
void* operator new(size_t size)
{
    void* const block = malloc(size);
    if (!block)
        __builtin_trap();
    return block;
}

// clang-tidy takes these for a second release of what is being deleted.
// NOLINTBEGIN(clang-analyzer-cplusplus.NewDelete)
void operator delete(void* block) noexcept
{
    free(block);
}

void operator delete(void* block, size_t) noexcept
{
    free(block);
}
// NOLINTEND(clang-analyzer-cplusplus.NewDelete)

#define EXPORT(name) extern "C" __attribute__((export_name(#name)))

/// Null when there is no memory left.
EXPORT(allocate) void* Allocate(uint32_t bytes)
{
    return malloc(bytes);
}

/// Where the host writes the path of a dataset before the calls that take one.
EXPORT(argument) char* Argument()
{
    return argument;
}

/// Opens the file of so many bytes, which stay there. Negative on failure.
EXPORT(open_file) int32_t OpenFile(void* image, uint32_t bytes)
{
    file = OpenHdfFileImage(image, bytes);
    return file < 0 ? -1 : 0;
}

/// The length of the next dataset's path; 0 when there are no more.
EXPORT(next_dataset) uint32_t NextDataset()
{
    if (!walk)
        walk = new HdfWalk{file};
    return walk->GoToNext() ? walk->PathLength() : 0;
}

/// The path of the dataset at hand.
EXPORT(dataset_path) const char* DatasetPath()
{
    return walk->Path();
}

/// What there is to know of the dataset at hand; null when it is no image.
EXPORT(examine_dataset) const HdfCandidate* ExamineDataset()
{
    return ExamineHdfDataset(walk->Group(), walk->Name(), walk->IsCalledImage(), candidate) ? &candidate
                                                                                            : nullptr;
}

/// What the dataset's samples take in the file; 0 for one that is missing or whose samples lie in other
/// files.
EXPORT(stored_bytes) uint64_t StoredBytes()
{
    const HdfDataSet dataset{H5Dopen2(file, argument, H5P_DEFAULT)};
    return dataset.IsOpen() && !IsStoredElsewhere(dataset.id) ? H5Dget_storage_size(dataset.id) : 0;
}

/// The first string of the dataset; null when it has none.
EXPORT(read_string) const char* ReadString()
{
    return ReadHdfStringDataset(file, argument);
}

/// Begins to read the whole dataset, converted to a pixel type. The number of its samples; negative on
/// failure.
EXPORT(begin_dataset) int64_t BeginDataset(uint32_t pixelType)
{
    return BeginReading(WholeHdfDataset(file, argument), pixelType);
}

/// Begins to read one frame of the series. The number of its samples; negative on failure.
EXPORT(begin_series_frame)
int64_t BeginSeriesFrame(uint32_t pixelType, uint32_t height, uint32_t width, uint32_t frame)
{
    return BeginReading(HdfSeriesFrame(height, width, frame), pixelType);
}

/// Reads on. The number of bytes of this band; 0 behind the last one, negative on failure.
EXPORT(read_band) int32_t ReadBand()
{
    return bands->ReadNext();
}

EXPORT(band) const uint8_t* Band()
{
    return bands->Band();
}
