#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Tav::Imaging::RawImage {

/// The bytes as characters, without a copy.
[[nodiscard]] std::string_view AsText(std::span<const uint8_t> bytes) noexcept;

/// The bytes before the first zero byte, or all of them.
[[nodiscard]] std::span<const uint8_t> UpToZero(std::span<const uint8_t> bytes) noexcept;

/// The bytes, each widened to one wide character as a signed character: a byte above 127 becomes a code
/// from 0xFF80 to 0xFFFF, on every platform.
[[nodiscard]] std::wstring WidenText(std::span<const uint8_t> bytes);
[[nodiscard]] std::wstring WidenText(std::string_view text);

/// The pieces between the delimiters. Empty pieces count, but not one after the last delimiter, and an
/// empty text has none.
[[nodiscard]] std::vector<std::string> SplitString(const std::string& text, char delimiter);

} // namespace Tav::Imaging::RawImage
