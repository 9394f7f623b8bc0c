#pragma once

#include "core/RawImageBase.h"
#include "core/stream/StreamReader.h"

#include <cstdint>
#include <optional>

namespace Tav::Imaging::RawImage {

/// Reads one section of an MRC file, of the classic layout or of MRC2014
/// (https://www.ccpem.ac.uk/mrc_format/mrc2014.php), and of two variants with packed 4-bit samples.
class RawImageMrc : public RawImageBase
{
public:
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;

private:
    /// Big-endian where the little-endian size makes no sense; false when neither does.
    [[nodiscard]] bool ReadSizeInEitherByteOrder(StreamReader& reader);
    [[nodiscard]] bool ReadSize(StreamReader& reader);
    [[nodiscard]] bool HasPlausibleSize() const noexcept;
    [[nodiscard]] uint32_t SectionBytes() const noexcept;
    /// The offset of the first section; nothing when there is no whole one. The number of frames becomes that
    /// of the sections that are there.
    [[nodiscard]] std::optional<uint64_t> FindSections(uint64_t streamSize, uint32_t extendedHeaderBytes,
                                                       uint32_t sectionBytes);
    /// Samples of 4 bits, in mode 101 or, against the standard, in mode 0.
    void RecognisePackedSamples(StreamReader& reader);
    void ReadVersion(StreamReader& reader, uint32_t modeNumber);
};

} // namespace Tav::Imaging::RawImage
