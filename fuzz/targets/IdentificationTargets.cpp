// Identification against the patterns that are registered with Windows, and against the choice of a reader.

#include "Target.h"
#include "support/streams/TestStream.h"

#include "core/RawImage.h"
#include "formats/Identification.h"
#include "registration/Formats.h"

#include <algorithm>
#include <memory>

using namespace Tav::Imaging::RawImage;

namespace {

void IdentifyHeader(std::span<const uint8_t> input)
{
    static const std::vector<HeaderPattern> patterns = Lumora::HeaderPatterns();
    Bytes bytes{input.begin(), input.end()};
    bytes.resize(identificationBytes);
    TestStream stream{bytes};
    const auto header = std::span{bytes}.first<identificationBytes>();

    const Identity identity = Identify(header);
    const bool isRead = identity >= Identity::Lattice && identity <= Identity::Bin;
    const bool isOffered =
        std::ranges::any_of(patterns, [&](const HeaderPattern& pattern) { return pattern.Matches(header); });
    // A pattern cannot say "not a metafile".
    Require(isOffered == (isRead || identity == Identity::EnhancedMetafile));
    const std::unique_ptr<RawImageBase> reader{RawImage::CreateReader(&stream)};
    Require((reader != nullptr) == isRead);
    Require(stream.references == 0);
}

} // namespace

std::vector<Target> IdentificationTargets()
{
    return {{"identification", IdentifyHeader}};
}
