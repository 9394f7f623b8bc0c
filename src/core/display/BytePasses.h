#pragma once

#include <cstddef>
#include <cstdint>

namespace Tav::Imaging::RawImage {

// Passes over the bytes of a frame, in place.

/// Swaps the bytes of each of `count` words of 16 or 32 bits.
template <typename Word>
void SwapBytes(uint8_t* words, size_t count);

/// Turns the order of the rows around.
void FlipRows(uint8_t* rows, size_t rowBytes, size_t rowCount);

/// How many of the bytes are 0.
[[nodiscard]] size_t ZeroBytes(const uint8_t* bytes, size_t count);

/// Converts signed bytes to unsigned ones, or unsigned bytes to signed ones.
void ShiftBytes(uint8_t* bytes, size_t count);

/// Whether two neighbours in a row differ by more than 127.
[[nodiscard]] bool HasJump(const uint8_t* pixels, size_t width, size_t height);

/// Writes the magnitudes of `count` complex numbers over them, in double precision. Each is computed in
/// double precision too, whatever the numbers are stored in.
template <typename Real>
void ReplaceByMagnitudes(uint8_t* numbers, size_t count);

} // namespace Tav::Imaging::RawImage
