#pragma once

#include "core/RawImageBase.h"

#include <gmock/gmock.h>

#include <concepts>
#include <cstdint>
#include <ostream>
#include <string>

/// What a reader tells of a file, the facts that most tests name first. These values are those of a new
/// reader.
struct FileFacts
{
    Tav::Imaging::RawImage::FileType fileType = Tav::Imaging::RawImage::FileType::None;
    Tav::Imaging::RawImage::PixelType pixelType = Tav::Imaging::RawImage::PixelType::Unknown;
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t frameCount = 0;
    bool flipVertical = false;
    std::wstring software = {};
    std::wstring formatDetails = {};
    Tav::Imaging::RawImage::ByteOrder byteOrder = Tav::Imaging::RawImage::ByteOrder::LittleEndian;
    uint32_t xStride = 0;
    uint32_t yStride = 0;

    bool operator==(const FileFacts&) const = default;
};

[[nodiscard]] FileFacts FactsOf(const Tav::Imaging::RawImage::RawImageBase& reader);

/// Matches a reader that has these facts. A failure names the facts that differ, and their values.
[[nodiscard]] testing::Matcher<const Tav::Imaging::RawImage::RawImageBase&>
HasFacts(const FileFacts& expected);

namespace Tav::Imaging::RawImage {

/// Keeps GoogleTest from printing the bytes of a reader.
template <std::derived_from<RawImageBase> Reader>
void PrintTo(const Reader& /*reader*/, std::ostream* out)
{
    *out << "a reader";
}

} // namespace Tav::Imaging::RawImage
