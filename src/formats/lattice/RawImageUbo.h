#pragma once

#include "core/RawImageBase.h"

namespace Tav::Imaging::RawImage {

/// Reads one slice of a lattice file: a text header and one block of samples, slice after slice. Frame 0 is
/// the middle slice, which represents the volume; all slices follow it.
class RawImageUbo : public RawImageBase
{
public:
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;
};

} // namespace Tav::Imaging::RawImage
