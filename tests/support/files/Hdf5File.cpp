#include "support/files/Hdf5File.h"

#include "formats/hdf/inside/HdfObject.h"

#include <hdf5_hl.h>

#include <array>
#include <stdexcept>

using namespace Tav::Imaging::RawImage;

namespace {

void Require(bool condition)
{
    if (!condition)
        throw std::runtime_error{"the HDF5 file cannot be written"};
}

hid_t Made(hid_t identifier)
{
    Require(identifier >= 0);
    return identifier;
}

void Done(herr_t result)
{
    Require(result >= 0);
}

hid_t NewMemoryFile()
{
    constexpr size_t growth = 0x100000;
    const HdfPropertyList access{Made(H5Pcreate(H5P_FILE_ACCESS))};
    Done(H5Pset_fapl_core(access.id, growth, false));
    return Made(H5Fcreate("memory", H5F_ACC_TRUNC, H5P_DEFAULT, access.id));
}

HdfDataType VariableLengthText(H5T_cset_t encoding)
{
    const hid_t type = Made(H5Tcopy(H5T_C_S1));
    Done(H5Tset_size(type, H5T_VARIABLE));
    Done(H5Tset_cset(type, encoding));
    return HdfDataType{type};
}

} // namespace

Hdf5File::Hdf5File() : file(NewMemoryFile()), linkCreation(Made(H5Pcreate(H5P_LINK_CREATE)))
{
    Done(H5Pset_create_intermediate_group(linkCreation, 1));
}

Hdf5File::~Hdf5File()
{
    Close();
}

void Hdf5File::Close()
{
    // Reading a file ends the library, and its identifiers with it.
    if (file == H5I_INVALID_HID)
        return;
    H5Pclose(linkCreation);
    H5Fclose(file);
    file = H5I_INVALID_HID;
}

Hdf5File& Hdf5File::DataSet(const std::string& path, hid_t type, const std::vector<hsize_t>& sides,
                            const Bytes& samples, const Hdf5Storage& storage)
{
    const HdfDataSpace space{Made(H5Screate_simple(static_cast<int>(sides.size()), sides.data(), nullptr))};
    const HdfPropertyList creation{Made(H5Pcreate(H5P_DATASET_CREATE))};
    if (!storage.chunk.empty())
        Done(H5Pset_chunk(creation.id, static_cast<int>(storage.chunk.size()), storage.chunk.data()));
    if (!storage.isFilled)
        Done(H5Pset_fill_time(creation.id, H5D_FILL_TIME_NEVER));
    if (storage.isCompressed)
        Done(H5Pset_deflate(creation.id, 6));
    const HdfDataSet dataset{
        Made(H5Dcreate2(file, path.c_str(), type, space.id, linkCreation, creation.id, H5P_DEFAULT))};
    if (!storage.isWritten)
        return *this;
    Require(samples.size() ==
            H5Tget_size(type) * static_cast<size_t>(H5Sget_simple_extent_npoints(space.id)));
    Done(H5Dwrite(dataset.id, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, samples.data()));
    return *this;
}

Hdf5File& Hdf5File::AnyDataSet(const std::string& path, hid_t type, const std::vector<hsize_t>& sides,
                               const Hdf5Storage& storage)
{
    size_t bytes = storage.isWritten ? H5Tget_size(type) : 0;
    for (const hsize_t side : sides)
        bytes *= static_cast<size_t>(side);
    Bytes samples(bytes);
    for (size_t i = 0; i < bytes; ++i)
        samples[i] = static_cast<uint8_t>(i * 31);
    return DataSet(path, type, sides, samples, storage);
}

Hdf5File& Hdf5File::Chunk(const std::string& path, const Bytes& stored)
{
    const HdfDataSet dataset{Made(H5Dopen2(file, path.c_str(), H5P_DEFAULT))};
    const std::array<hsize_t, H5S_MAX_RANK> first{};
    Done(H5Dwrite_chunk(dataset.id, H5P_DEFAULT, 0, first.data(), stored.size(), stored.data()));
    return *this;
}

Hdf5File& Hdf5File::Strings(const std::string& path, const std::vector<std::string>& texts,
                            H5T_cset_t encoding)
{
    const hsize_t count = texts.size();
    const HdfDataSpace space{Made(H5Screate_simple(1, &count, nullptr))};
    const HdfDataType type = VariableLengthText(encoding);
    const HdfDataSet dataset{
        Made(H5Dcreate2(file, path.c_str(), type.id, space.id, linkCreation, H5P_DEFAULT, H5P_DEFAULT))};
    std::vector<const char*> pointers;
    pointers.reserve(texts.size());
    for (const std::string& text : texts)
        pointers.push_back(text.c_str());
    Done(H5Dwrite(dataset.id, type.id, H5S_ALL, H5S_ALL, H5P_DEFAULT, pointers.data()));
    return *this;
}

Hdf5File& Hdf5File::Text(const std::string& path, const std::string& attribute, const std::string& text)
{
    Done(H5LTset_attribute_string(file, path.c_str(), attribute.c_str(), text.c_str()));
    return *this;
}

Hdf5File& Hdf5File::VariableText(const std::string& path, const std::string& attribute,
                                 const std::string& text)
{
    const HdfDataType type = VariableLengthText(H5T_CSET_ASCII);
    const HdfDataSpace space{Made(H5Screate(H5S_SCALAR))};
    const HdfAttribute target{Made(H5Acreate_by_name(file, path.c_str(), attribute.c_str(), type.id, space.id,
                                                     H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT))};
    const char* const pointer = text.c_str();
    Done(H5Awrite(target.id, type.id, static_cast<const void*>(&pointer)));
    return *this;
}

Hdf5File& Hdf5File::Attribute(const std::string& path, const std::string& attribute, hid_t type)
{
    const HdfDataSpace space{Made(H5Screate(H5S_SCALAR))};
    const HdfAttribute target{Made(H5Acreate_by_name(file, path.c_str(), attribute.c_str(), type, space.id,
                                                     H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT))};
    return *this;
}

Hdf5File& Hdf5File::Palettes(const std::string& path, hsize_t count)
{
    for (hsize_t i = 0; i < count; ++i)
    {
        const hsize_t sides[] = {256, 3};
        const Bytes colours(sides[0] * sides[1]);
        const std::string palette = path + " palette " + std::to_string(i);
        Done(H5IMmake_palette(file, palette.c_str(), sides, colours.data()));
        Done(H5IMlink_palette(file, path.c_str(), palette.c_str()));
    }
    return *this;
}

Hdf5File& Hdf5File::Group(const std::string& path)
{
    const HdfGroup group{Made(H5Gcreate2(file, path.c_str(), linkCreation, H5P_DEFAULT, H5P_DEFAULT))};
    return *this;
}

Hdf5File& Hdf5File::HardLink(const std::string& existing, const std::string& added)
{
    Done(H5Lcreate_hard(file, existing.c_str(), file, added.c_str(), linkCreation, H5P_DEFAULT));
    return *this;
}

Hdf5File& Hdf5File::SoftLink(const std::string& target, const std::string& added)
{
    Done(H5Lcreate_soft(target.c_str(), file, added.c_str(), linkCreation, H5P_DEFAULT));
    return *this;
}

Bytes Hdf5File::Build()
{
    Done(H5Fflush(file, H5F_SCOPE_GLOBAL));
    Bytes bytes(static_cast<size_t>(H5Fget_file_image(file, nullptr, 0)));
    Require(H5Fget_file_image(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    Close();
    return bytes;
}
