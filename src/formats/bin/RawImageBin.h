#pragma once

#include "core/RawImageBase.h"

namespace Tav::Imaging::RawImage {

/// Reads the single frame of a BIN file: a type code, width and height, in newer files the header's own
/// length, and the samples. Only the file size distinguishes the two headers.
class RawImageBin : public RawImageBase
{
public:
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;
};

} // namespace Tav::Imaging::RawImage
