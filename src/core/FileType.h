#pragma once

#include <cstdint>

namespace Tav::Imaging::RawImage {

/// The format of a file, as its reader recognised it.
enum class FileType : uint32_t
{
    None = 0,
    PelixMesh = 1,
    VornaMesh = 2,
    Bin = 3,
    Dm3 = 4,
    Dm4 = 5,
    BinWithDataOffset = 6,
    Emi = 7,
    Hdf = 8,
    Mrc = 9,
    Mrc2014 = 10,
    Npy = 11,
    Raw = 12,
    Ser = 13,
};

} // namespace Tav::Imaging::RawImage
