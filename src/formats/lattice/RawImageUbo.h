#pragma once

#include "core/RawImageBase.h"

namespace Tav::Imaging::RawImage {

/// The format has three names. Users know it as lattice files, after what they hold. The files begin with the
/// name of the program that wrote them, "# PelixMesh " or "# Vorna ". UBO is its name in our classes and in
/// the lines that they write.
///
/// Reads one slice of such a file: a text header and one block of samples, slice after slice. Frame 0 is
/// the middle slice, which represents the volume; all slices follow it.
class RawImageUbo : public RawImageBase
{
public:
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;
};

} // namespace Tav::Imaging::RawImage
