#pragma once

#include "core/RawImageBase.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace Tav::Imaging::RawImage {

/// How many of a stream's first bytes tell its format.
constexpr size_t identificationBytes = 64;

/// A new reader for the format that a stream's first bytes show; null, after a diagnostic line, for one that
/// is not read. The formats provide the definition: here alone the core calls what is built on it, so that
/// who opens a file need not know the formats.
[[nodiscard]] std::unique_ptr<RawImageBase> MakeReader(std::span<const uint8_t, identificationBytes> header);

} // namespace Tav::Imaging::RawImage
