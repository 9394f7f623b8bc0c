#pragma once

#include "core/RawImageBase.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace Tav::Imaging::RawImage {

/// How many of a stream's first bytes identify its format.
constexpr size_t identificationBytes = 64;

/// Returns a new reader for the format that a stream's first bytes show, or null, after a diagnostic line, if
/// the format is not read. The layer of the formats defines this function. It is the only call from the core
/// up to that layer, so code that opens a file need not know the formats.
[[nodiscard]] std::unique_ptr<RawImageBase> MakeReader(std::span<const uint8_t, identificationBytes> header);

} // namespace Tav::Imaging::RawImage
