#pragma once

#include "core/PixelType.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Scans the text header of a lattice file for the dimensions, the sample type and the place of the data.
class UboHeaderParser
{
public:
    virtual ~UboHeaderParser() = default;

    /// True when both the type line and the dimension line were understood.
    [[nodiscard]] bool Parse(std::string_view text);

    /// The entries of the header's "Parameters" block.
    std::map<std::string, std::string> parameters;
    PixelType sampleType = PixelType::Unknown;
    bool isCompressed = false;
    /// Byte position of the first data byte; 0 when the header does not say where the data begin.
    uint32_t dataOffset = 0;
    uint32_t dimensionX = 0;
    uint32_t dimensionY = 0;
    uint32_t dimensionZ = 0;

private:
    void Scan(std::string_view text);
    void OpenSection(std::string_view line);
    void CloseSection();
    /// Takes one line, trimmed and not empty. Returns true if the data follow this line.
    [[nodiscard]] bool TakeLine(std::string_view line);
    [[nodiscard]] bool TakeParameter(std::string_view line);
    [[nodiscard]] bool FindSampleType();
    [[nodiscard]] bool FindDimensions();

    /// Every line outside the parameter block, in file order.
    std::vector<std::string> headerLines;
    uint32_t openSections = 0;
    bool isInParameters = false;
    /// True until the first outermost block ends; later braces are text.
    bool hasSectionMarks = true;
    bool isDataAnnounced = false;
};

} // namespace Tav::Imaging::RawImage
