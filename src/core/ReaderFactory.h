#pragma once

#include "core/RawImageBase.h"
#include "formats/Identification.h"

#include <memory>

namespace Tav::Imaging::RawImage {

/// A new reader for the format; null when no reader exists for it. The formats provide the definition, so
/// that the core need not know them.
[[nodiscard]] std::unique_ptr<RawImageBase> MakeReader(Identity identity);

} // namespace Tav::Imaging::RawImage
