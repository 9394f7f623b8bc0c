#pragma once

#include "core/RawImageBase.h"

#include <span>
#include <string_view>

namespace Tav::Imaging::RawImage {

/// Reads one 2-D slice of a NumPy array file, format version 1.0
/// (https://numpy.org/doc/stable/reference/generated/numpy.lib.format.html). Arrays are read as little-endian
/// and in C order, whatever their header says.
class RawImageNpy : public RawImageBase
{
public:
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;

private:
    /// Takes pixel type, size and frame count from the text of the header's dictionary.
    [[nodiscard]] bool ParseNpyHeader(std::string_view text);
    [[nodiscard]] bool ParseElementType(std::string_view dictionary);
    [[nodiscard]] bool ParseShape(std::string_view dictionary);
    /// Takes size and frame count from the numbers of the shape, of which there are two or three.
    void TakeSizes(std::span<const std::string_view> tokens);
};

} // namespace Tav::Imaging::RawImage
