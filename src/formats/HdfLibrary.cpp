#include "formats/HdfLibrary.h"

#include <hdf5.h>

namespace Tav::Imaging::RawImage {

namespace {

/// Not again after it has failed once.
bool Start() noexcept
{
    static bool hasFailed = false;
    if (hasFailed)
        return false;
    H5dont_atexit();
    hasFailed = H5open() < 0 || H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr) < 0 ||
                H5PLset_loading_state(0) < 0 || H5Lunregister(H5L_TYPE_EXTERNAL) < 0;
    return !hasFailed;
}

} // namespace

HdfLibrary::HdfLibrary() : isReady(Start()) {}

HdfLibrary::~HdfLibrary()
{
    if (isReady)
        H5close();
}

} // namespace Tav::Imaging::RawImage
