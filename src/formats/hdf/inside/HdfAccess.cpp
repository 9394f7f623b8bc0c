#include "formats/hdf/inside/HdfAccess.h"

#include "formats/hdf/inside/HdfObject.h"

#include <hdf5.h>
#include <hdf5_hl.h>

namespace Tav::Imaging::RawImage {

namespace {

constexpr PixelType nativePixelTypes[] = {
    PixelType::UInt8, PixelType::UInt16, PixelType::UInt32,  PixelType::Int8,
    PixelType::Int16, PixelType::Int32,  PixelType::Float32, PixelType::Double64,
};

} // namespace

hid_t OpenHdfFileImage(void* image, size_t size)
{
    // Nobody reads what the library prints, and there are no plug-ins and no other files.
    if (H5open() < 0 || H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr) < 0 || H5PLset_loading_state(0) < 0 ||
        H5Lunregister(H5L_TYPE_EXTERNAL) < 0)
        return H5I_INVALID_HID;
    return H5LTopen_file_image(image, size, H5LT_FILE_IMAGE_DONT_COPY | H5LT_FILE_IMAGE_DONT_RELEASE);
}

char* ReadHdfStringDataset(hid_t location, const char* name)
{
    const HdfDataSet dataset{H5Dopen2(location, name, H5P_DEFAULT)};
    if (!dataset.IsOpen() || IsStoredElsewhere(dataset.id))
        return nullptr;
    const HdfDataSpace space{H5Dget_space(dataset.id)};
    hsize_t count = 0;
    if (!space.IsOpen() || H5Sget_simple_extent_ndims(space.id) != 1 ||
        H5Sget_simple_extent_dims(space.id, &count, nullptr) < 0 || count == 0)
        return nullptr;

    // Only the first string is of use, and many could all stand for one long text.
    const hsize_t first = 0;
    const hsize_t one = 1;
    const HdfDataSpace memorySpace{H5Screate_simple(1, &one, nullptr)};
    const HdfDataType type{H5Tcopy(H5T_C_S1)};
    static char empty[] = "";
    char* text = nullptr;
    const bool isRead =
        memorySpace.IsOpen() && H5Tset_size(type.id, H5T_VARIABLE) >= 0 &&
        H5Sselect_hyperslab(space.id, H5S_SELECT_SET, &first, nullptr, &one, nullptr) >= 0 &&
        H5Dread(dataset.id, type.id, memorySpace.id, space.id, H5P_DEFAULT, static_cast<void*>(&text)) >= 0;
    if (!isRead)
        return nullptr;
    return text ? text : empty;
}

hid_t HdfMemoryType(PixelType pixelType)
{
    switch (pixelType)
    {
    case PixelType::UInt8:
        return H5T_NATIVE_UCHAR;
    case PixelType::UInt16:
        return H5T_NATIVE_USHORT;
    case PixelType::UInt32:
        return H5T_NATIVE_UINT;
    case PixelType::Int8:
        return H5T_NATIVE_SCHAR;
    case PixelType::Int16:
        return H5T_NATIVE_SHORT;
    case PixelType::Int32:
        return H5T_NATIVE_INT;
    case PixelType::Float32:
        return H5T_NATIVE_FLOAT;
    case PixelType::Double64:
        return H5T_NATIVE_DOUBLE;
    default:
        return H5I_INVALID_HID;
    }
}

PixelType NativePixelType(hid_t dataset)
{
    const HdfDataType type{H5Dget_type(dataset)};
    const HdfDataType native{H5Tget_native_type(type.id, H5T_DIR_ASCEND)};
    if (!native.IsOpen())
        return PixelType::Unknown;
    for (const PixelType pixelType : nativePixelTypes)
    {
        if (H5Tequal(native.id, HdfMemoryType(pixelType)) > 0)
            return pixelType;
    }
    return PixelType::Unknown;
}

bool IsStoredElsewhere(hid_t dataset)
{
    const HdfPropertyList creation{H5Dget_create_plist(dataset)};
    return H5Pget_layout(creation.id) == H5D_VIRTUAL || H5Pget_external_count(creation.id) != 0;
}

} // namespace Tav::Imaging::RawImage
