#include "support/streams/TestStream.h"

#include "formats/hdf/HdfMutexLock.h"
#include "formats/hdf/RawImageHdf.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

using namespace Tav::Imaging::RawImage;

// Runs only the reader of HDF5 files, for one frame of each input. The budget of steps is small: starting the
// library takes most of the time of an input.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const HANDLE mutex = CreateMutexW(nullptr, 0, hdfMutexName);
    TestStream stream{{data, data + size}};
    RawImageHdf reader{mutex};
    // Reads other frames of a series than the first one, too.
    const auto frameIndex = static_cast<uint32_t>(size % 3);
    if (!reader.Read(&stream, size, readModeFrame, frameIndex))
        return 0;
    const size_t samples = reader.pixelType == PixelType::RGB24 ? 3 : 1;
    if (frameIndex >= reader.frameCount ||
        reader.displayPixels.size() != size_t{reader.width} * reader.height * samples ||
        stream.references != 0)
        std::abort();
    return 0;
}
