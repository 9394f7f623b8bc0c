#pragma once

#include "support/files/Hdf5File.h"

#include "formats/hdf/inside/HdfObject.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

/// A type whose description in the file has more than 50000 bytes, to be written over.
inline Tav::Imaging::RawImage::HdfDataType LongType()
{
    // A member takes 24 bytes for its name, 32 for its place and 12 for its type.
    constexpr size_t members = 800;
    const hid_t type = H5Tcreate(H5T_COMPOUND, members);
    for (size_t i = 0; i < members; ++i)
        H5Tinsert(type, (std::string(20, 'n') + std::to_string(i)).c_str(), i, H5T_STD_U8LE);
    return Tav::Imaging::RawImage::HdfDataType{type};
}

/// Writes a type over the long type's description: kinds of types in each other, as deep as they can be.
inline Bytes WithNestedType(Bytes file, const Bytes& kind)
{
    constexpr size_t largestType = 50000;
    const Bytes longType = {0x16, 0x20, 0x03, 0x00, 0x20, 0x03, 0x00, 0x00};
    const auto place = std::search(file.begin(), file.end(), longType.begin(), longType.end());
    EXPECT_NE(place, file.end());
    const size_t levels = std::min(largestType, static_cast<size_t>(file.end() - place)) / kind.size() - 1;
    for (size_t level = 0; level < levels; ++level)
        std::ranges::copy(kind, place + static_cast<ptrdiff_t>(level * kind.size()));
    const Bytes innermost = {0x10, 8, 0, 0, 1, 0, 0, 0, 0, 0, 8, 0};
    std::ranges::copy(innermost, place + static_cast<ptrdiff_t>(levels * kind.size()));
    return file;
}

/// Class, version and size, and what the class has of its own before it goes on with the inner type.
const std::vector<std::pair<std::string, Bytes>> nestingKinds = {
    {"variable lengths", {0x19, 0, 0, 0, 16, 0, 0, 0}},
    {"enumerations", {0x18, 0, 0, 0, 1, 0, 0, 0}},
    {"compounds", {0x36, 1, 0, 0, 1, 0, 0, 0, 0, 0}},
    {"arrays", {0x3A, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 0}},
};
