#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace Tav::Imaging::RawImage {

/// The bytes up to the first zero byte, each widened to one wide character as a signed character: a byte
/// above 127 becomes a code from 0xFF80 to 0xFFFF, on every platform.
[[nodiscard]] std::wstring WidenText(std::span<const uint8_t> bytes);

} // namespace Tav::Imaging::RawImage
