#include "formats/HdfObject.h"

#include <hdf5.h>

namespace Tav::Imaging::RawImage {

HdfFile::~HdfFile()
{
    if (IsOpen())
        H5Fclose(id);
}

HdfGroup::~HdfGroup()
{
    if (IsOpen())
        H5Gclose(id);
}

HdfDataSet::~HdfDataSet()
{
    if (IsOpen())
        H5Dclose(id);
}

HdfDataType::~HdfDataType()
{
    if (IsOpen())
        H5Tclose(id);
}

HdfDataSpace::~HdfDataSpace()
{
    if (IsOpen())
        H5Sclose(id);
}

HdfAttribute::~HdfAttribute()
{
    if (IsOpen())
        H5Aclose(id);
}

HdfPropertyList::~HdfPropertyList()
{
    if (IsOpen())
        H5Pclose(id);
}

} // namespace Tav::Imaging::RawImage
