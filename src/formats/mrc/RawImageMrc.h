#pragma once

#include "core/RawImageBase.h"

namespace Tav::Imaging::RawImage {

/// Reads one section of an MRC file, of the classic layout or of MRC2014
/// (https://www.ccpem.ac.uk/mrc_format/mrc2014.php), and of two variants with packed 4-bit samples.
class RawImageMrc : public RawImageBase
{
public:
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;
};

} // namespace Tav::Imaging::RawImage
