#include "support/FileFacts.h"

#include <utility>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

/// The name of each fact, and its value as a text.
std::vector<std::pair<std::string, std::string>> Texts(const FileFacts& facts)
{
    using testing::PrintToString;
    return {
        {"file type", PrintToString(static_cast<uint32_t>(facts.fileType))},
        {"pixel type", PrintToString(PixelTypeName(facts.pixelType))},
        {"width", PrintToString(facts.width)},
        {"height", PrintToString(facts.height)},
        {"frame count", PrintToString(facts.frameCount)},
        {"flip", PrintToString(facts.flipVertical)},
        {"software", PrintToString(facts.software)},
        {"format details", PrintToString(facts.formatDetails)},
        {"byte order", PrintToString(static_cast<uint32_t>(facts.byteOrder))},
        {"x stride", PrintToString(facts.xStride)},
        {"y stride", PrintToString(facts.yStride)},
    };
}

MATCHER_P(HasAll, expected, negation ? "has other facts" : "has the facts that are expected")
{
    const FileFacts actual = FactsOf(arg);
    if (actual == expected)
        return true;
    const auto texts = Texts(actual);
    const auto expectedTexts = Texts(expected);
    for (size_t i = 0; i < texts.size(); ++i)
        if (texts[i] != expectedTexts[i])
            *result_listener << texts[i].first << " " << texts[i].second << " instead of "
                             << expectedTexts[i].second << "; ";
    return false;
}

} // namespace

FileFacts FactsOf(const RawImageBase& reader)
{
    return {.fileType = reader.fileType,
            .pixelType = reader.pixelType,
            .width = reader.width,
            .height = reader.height,
            .frameCount = reader.frameCount,
            .flipVertical = reader.flipVertical,
            .software = reader.software,
            .formatDetails = reader.formatDetails,
            .byteOrder = reader.byteOrder,
            .xStride = reader.xStride,
            .yStride = reader.yStride};
}

testing::Matcher<const RawImageBase&> HasFacts(const FileFacts& expected)
{
    return HasAll(expected);
}
