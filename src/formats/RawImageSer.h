#pragma once

#include "core/RawImageBase.h"

namespace Tav::Imaging::RawImage {

/// Reads one 2-D element of a SER series file: a header, an array of element offsets, and elements that
/// each carry their own size and data type.
class RawImageSer : public RawImageBase
{
public:
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;
};

} // namespace Tav::Imaging::RawImage
