#pragma once

#include "support/BytesAndLines.h"

#include <hdf5.h>

#include <string>
#include <vector>

/// How a dataset's samples are kept: in one piece unless there is a chunk.
struct Hdf5Storage
{
    std::vector<hsize_t> chunk = {};
    bool isCompressed = false;
    /// A dataset that nobody has written to has no storage.
    bool isWritten = true;
    /// What has not been written is read as zeros, or else not at all.
    bool isFilled = true;
};

/// Writes an HDF5 file in memory with the HDF5 library. Missing groups of a path are made. A step that fails
/// throws.
class Hdf5File
{
public:
    Hdf5File();
    Hdf5File(const Hdf5File&) = delete;
    Hdf5File& operator=(const Hdf5File&) = delete;
    ~Hdf5File();

    /// The samples are given as bytes of the type that they have in the file.
    Hdf5File& DataSet(const std::string& path, hid_t type, const std::vector<hsize_t>& sides,
                      const Bytes& samples, const Hdf5Storage& storage = {});
    /// A dataset whose samples do not matter: bytes of all values.
    Hdf5File& AnyDataSet(const std::string& path, hid_t type, const std::vector<hsize_t>& sides,
                         const Hdf5Storage& storage = {});
    /// Stores the first chunk of a dataset as the bytes given, whatever filters it has.
    Hdf5File& Chunk(const std::string& path, const Bytes& stored);
    /// A one-dimensional dataset of variable-length strings.
    Hdf5File& Strings(const std::string& path, const std::vector<std::string>& texts,
                      H5T_cset_t encoding = H5T_CSET_ASCII);
    /// An attribute that is a text with a zero byte at its end.
    Hdf5File& Text(const std::string& path, const std::string& attribute, const std::string& text);
    /// An attribute that is one variable-length text.
    Hdf5File& VariableText(const std::string& path, const std::string& attribute, const std::string& text);
    /// An attribute of one element of any type.
    Hdf5File& Attribute(const std::string& path, const std::string& attribute, hid_t type);
    /// Gives an image that many palettes.
    Hdf5File& Palettes(const std::string& path, hsize_t count);
    Hdf5File& Group(const std::string& path);
    Hdf5File& HardLink(const std::string& existing, const std::string& added);
    Hdf5File& SoftLink(const std::string& target, const std::string& added);

    /// The file's bytes. Nothing can be added any more.
    [[nodiscard]] Bytes Build();

private:
    void Close();

    hid_t file;
    hid_t linkCreation;
};
