#pragma once

#include "core/RawImageBase.h"

namespace Tav::Imaging::RawImage {

/// Reads the single frame of a RAW file: a signature, a header of nine words, and samples that may lie at
/// a distance from each other.
class RawImageRaw : public RawImageBase
{
public:
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;
};

} // namespace Tav::Imaging::RawImage
