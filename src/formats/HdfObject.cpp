#include "formats/HdfObject.h"

#include <hdf5.h>

// The library's own function that takes an identifier away from its object.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" void* H5I_remove(hid_t identifier);

namespace Tav::Imaging::RawImage {

void HdfObject::Close(herr_t (*close)(hid_t)) const noexcept
{
    // What a damaged file keeps from being closed has been torn down in part. Nobody may find it again.
    if (IsOpen() && close(id) < 0)
        H5I_remove(id);
}

HdfFile::~HdfFile()
{
    Close(H5Fclose);
}

HdfGroup::~HdfGroup()
{
    Close(H5Gclose);
}

HdfDataSet::~HdfDataSet()
{
    Close(H5Dclose);
}

HdfDataType::~HdfDataType()
{
    Close(H5Tclose);
}

HdfDataSpace::~HdfDataSpace()
{
    Close(H5Sclose);
}

HdfAttribute::~HdfAttribute()
{
    Close(H5Aclose);
}

HdfPropertyList::~HdfPropertyList()
{
    Close(H5Pclose);
}

} // namespace Tav::Imaging::RawImage
