#include "formats/hdf/inside/HdfExamination.h"

#include "formats/hdf/inside/HdfAccess.h"
#include "formats/hdf/inside/HdfNames.h"
#include "formats/hdf/inside/HdfObject.h"

#include <hdf5.h>
#include <hdf5_hl.h>

#include <cstring>

namespace Tav::Imaging::RawImage {

namespace {

/// The text of an attribute of one fixed length, up to its zero byte; false for any other attribute. The
/// library's own functions for image attributes take all texts for such.
bool ReadFixedText(hid_t dataset, const char* name, H5T_str_t& end, char (&text)[longestHdfText + 1])
{
    const HdfAttribute attribute{H5Aopen(dataset, name, H5P_DEFAULT)};
    if (!attribute.IsOpen())
        return false;
    const HdfDataType type{H5Aget_type(attribute.id)};
    const hsize_t bytes = H5Aget_storage_size(attribute.id);
    if (H5Tget_class(type.id) != H5T_STRING || H5Tis_variable_str(type.id) != 0 || bytes == 0 ||
        bytes > longestHdfText)
        return false;
    end = H5Tget_strpad(type.id);
    memset(text, 0, sizeof(text));
    return H5Aread(attribute.id, type.id, text) >= 0;
}

/// True for the class "IMAGE" or a beginning of this word, as the HDF5 image library has it.
bool HasImageClass(hid_t dataset)
{
    char text[longestHdfText + 1];
    H5T_str_t end = H5T_STR_ERROR;
    return ReadFixedText(dataset, hdfClassAttribute, end, text) && end == H5T_STR_NULLTERM &&
           strncmp(text, hdfImageClass, strnlen(text, sizeof(hdfImageClass) - 1)) == 0;
}

} // namespace

bool ExamineHdfDataset(hid_t group, const char* name, bool isCalledImage, HdfCandidate& candidate)
{
    candidate = {};
    const HdfDataSet dataset{H5Dopen2(group, name, H5P_DEFAULT)};
    if (!dataset.IsOpen() || IsStoredElsewhere(dataset.id) || (!isCalledImage && !HasImageClass(dataset.id)))
        return false;
    candidate.pixelType = NativePixelType(dataset.id);
    if (candidate.pixelType == PixelType::Unknown)
        return false;
    H5T_str_t end = H5T_STR_ERROR;
    if (H5Aexists(dataset.id, hdfInterlaceAttribute) != 0 &&
        !ReadFixedText(dataset.id, hdfInterlaceAttribute, end, candidate.interlace))
        return false;

    const HdfDataSpace space{H5Dget_space(dataset.id)};
    hsize_t sides[H5S_MAX_RANK] = {};
    candidate.dimensions = H5Sget_simple_extent_dims(space.id, sides, nullptr);
    memcpy(candidate.sides, sides, sizeof(candidate.sides));
    hssize_t palettes = 0;
    candidate.palettes = H5IMget_npalettes(group, name, &palettes) < 0 ? -1 : static_cast<int32_t>(palettes);

    return true;
}

} // namespace Tav::Imaging::RawImage
