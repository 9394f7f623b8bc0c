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
    /// Uses big-endian order if the little-endian size is not plausible. Returns false if neither size is
    /// plausible.
    [[nodiscard]] bool ReadSizeInEitherByteOrder(StreamReader& reader);
    [[nodiscard]] bool ReadSize(StreamReader& reader);
    [[nodiscard]] bool HasPlausibleSize() const noexcept;
    [[nodiscard]] uint32_t SectionBytes() const noexcept;
    /// The offset of the first section; nothing if there is no whole section. If the file holds fewer
    /// sections than the header says, or the header says 0, the number of frames becomes that of the whole
    /// sections.
    [[nodiscard]] std::optional<uint64_t> FindSections(uint64_t streamSize, uint32_t extendedHeaderBytes,
                                                       uint32_t sectionBytes);
    /// Recognises 4-bit samples: in mode 101 or, against the standard, in mode 0.
    void RecognisePackedSamples(StreamReader& reader);
    void ReadVersion(StreamReader& reader, uint32_t modeNumber);
};

} // namespace Tav::Imaging::RawImage
