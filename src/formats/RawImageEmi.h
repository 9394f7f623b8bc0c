#pragma once

#include "core/RawImageBase.h"

namespace Tav::Imaging::RawImage {

/// Reads one image of an EMI file: a flat stream of tagged items, some of them 2-D arrays.
class RawImageEmi : public RawImageBase
{
public:
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;
};

} // namespace Tav::Imaging::RawImage
