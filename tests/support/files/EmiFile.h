#pragma once

#include "support/ByteWriter.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

/// Nine pixels: images of eight or less have a length that does not tell the size of a sample.
inline const std::vector<uint8_t> nine = {0, 1, 2, 3, 4, 5, 6, 7, 255};

/// Builds an EMI file: a header, and items one after the other. An item is a type, an identifier, and
/// contents whose size the type or a length word tells.
class EmiFile
{
public:
    static constexpr uint16_t sizedText = 96;
    static constexpr uint16_t versionIdentifier = 1810;

    explicit EmiFile(uint16_t version = 0x0200, uint16_t stamp = 0x4B4A)
    {
        file.Put(stamp).Put(version).Put(uint32_t{0xCCCCCCCC});
    }

    /// The type that stands alone.
    EmiFile& Blank()
    {
        file.Put(uint16_t{0});
        return *this;
    }

    EmiFile& Item(uint16_t type, uint16_t identifier, std::span<const uint8_t> contents = {})
    {
        file.Put(type).Put(identifier).Put(contents);
        return *this;
    }

    /// An item of `type`'s fixed size, filled with what would be an absurd item by itself.
    EmiFile& Fixed(uint16_t type, size_t contentBytes)
    {
        return Item(type, 7, std::vector<uint8_t>(contentBytes, 0xEE));
    }

    /// An item that tells its length, truly unless another one is claimed.
    EmiFile& Sized(uint16_t type, uint16_t identifier, std::span<const uint8_t> contents,
                   std::optional<uint32_t> claimedLength = std::nullopt)
    {
        file.Put(type).Put(identifier).Put(claimedLength.value_or(static_cast<uint32_t>(contents.size())));
        file.Put(contents);
        return *this;
    }

    EmiFile& Text(uint16_t identifier, std::string_view text)
    {
        return Sized(sizedText, identifier, std::vector<uint8_t>(text.begin(), text.end()));
    }

    EmiFile& VersionText(std::string_view text) { return Text(versionIdentifier, text); }

    /// A 2-D array. Its length counts the four words of its size, two of them unused, and the samples.
    EmiFile& Array(uint16_t type, uint16_t width, uint16_t height, std::span<const uint8_t> samples,
                   std::optional<uint32_t> claimedLength = std::nullopt)
    {
        constexpr uint32_t sizeBytes = 8;
        file.Put(type).Put(uint16_t{1});
        file.Put(claimedLength.value_or(static_cast<uint32_t>(sizeBytes + samples.size())));
        file.Put(width).Put(uint16_t{0xAAAA}).Put(height).Put(uint16_t{0xBBBB}).Put(samples);
        return *this;
    }

    /// An array of bytes.
    EmiFile& Bytes(uint16_t width, uint16_t height, std::span<const uint8_t> samples)
    {
        return Array(0x2202, width, height, samples);
    }

    [[nodiscard]] std::vector<uint8_t> Build() const { return file.bytes; }

private:
    ByteWriter file;
};
