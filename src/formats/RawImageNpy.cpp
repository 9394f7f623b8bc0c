#include "formats/RawImageNpy.h"

#include "core/Diagnostics.h"
#include "core/stream/StreamReader.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <vector>

namespace Tav::Imaging::RawImage {

namespace {

constexpr ReaderLog log{L"NPY: "};

using namespace std::string_view_literals;

/// How many bytes of the file may hold the header, including magic and version.
constexpr size_t headBytes = 256;
constexpr size_t headerOffset = 10;
constexpr uint32_t mostFrames = 4096;

struct ElementType
{
    std::string_view code;
    PixelType pixelType;
};

// In the order in which they are searched: a code may be anywhere in the element type.
constexpr ElementType elementTypes[] = {
    {"u1", PixelType::UInt8},       {"u2", PixelType::UInt16},   {"u4", PixelType::UInt32},
    {"i1", PixelType::Int8},        {"i2", PixelType::Int16},    {"i4", PixelType::Int32},
    {"f4", PixelType::Float32},     {"f8", PixelType::Double64}, {"c8", PixelType::Complex64},
    {"c16", PixelType::Complex128},
};

/// The text between the first `open` behind a key and the next `close`; nothing when one of them is missing.
std::optional<std::string_view> ValueOf(std::string_view text, std::string_view key, char open, char close)
{
    const size_t found = text.find(key);
    if (found == std::string_view::npos)
        return std::nullopt;
    const size_t opened = text.find(open, found + key.size());
    if (opened == std::string_view::npos)
        return std::nullopt;
    const size_t closed = text.find(close, opened + 1);
    if (closed == std::string_view::npos)
        return std::nullopt;
    return text.substr(opened + 1, closed - opened - 1);
}

/// Converts as the C library's decimal conversion does: leading white space, a sign, digits up to the first
/// other character. Numbers are limited to the range of a signed 32-bit integer.
uint32_t ToNumber(std::string_view token) noexcept
{
    token.remove_prefix(std::min(token.find_first_not_of(" \t\n\v\f\r"sv), token.size()));
    const bool isNegative = token.starts_with('-');
    if (isNegative || token.starts_with('+'))
        token.remove_prefix(1);

    constexpr int64_t limit = std::numeric_limits<int32_t>::max();
    int64_t value = 0;
    for (const char digit : token)
    {
        if (digit < '0' || digit > '9')
            break;
        value = std::min(value * 10 + (digit - '0'), limit + 1);
    }
    return static_cast<uint32_t>(isNegative ? -value : std::min(value, limit));
}

/// The pieces between spaces, commas and the suffix L of long integers.
std::vector<std::string_view> Tokens(std::string_view shape)
{
    constexpr std::string_view separators = " ,L";
    std::vector<std::string_view> tokens;
    size_t begin = shape.find_first_not_of(separators);
    while (begin != std::string_view::npos)
    {
        const size_t end = std::min(shape.find_first_of(separators, begin), shape.size());
        tokens.push_back(shape.substr(begin, end - begin));
        begin = shape.find_first_not_of(separators, end);
    }
    return tokens;
}

} // namespace

bool RawImageNpy::Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex)
{
    StreamReader reader{stream};
    fileType = FileType::Npy;
    readMode = mode;

    const auto head = reader.ReadBytes(headBytes);
    if (!head)
        return false;
    const std::string_view text{reinterpret_cast<const char*>(head->data()), head->size()};
    if (!text.starts_with("\x93NUMPY"sv))
        return log.Fail(L"Invalid header");
    if (text[6] != 1 || text[7] != 0)
        return log.Fail(L"Unsupported version");
    const auto headerBytes = AssembleNumber<uint16_t>(head->data() + 8, ByteOrder::LittleEndian);
    if (!ParseNpyHeader(text.substr(headerOffset)))
        return false;
    if (frameIndex >= frameCount)
        return log.Fail(L"Frame index is out of range");

    // The frame size wraps at 32 bits, its offset does not.
    const uint32_t frameBytes = width * height * BytesPerPixel(pixelType);
    const uint64_t frameOffset = headerOffset + headerBytes + uint64_t{frameIndex} * frameBytes;
    if (frameOffset + frameBytes > streamSize)
        return log.Fail(L"Invalid data size");
    return ConvertToDisplay(stream, streamSize, frameOffset);
}

bool RawImageNpy::ParseNpyHeader(std::string_view text)
{
    const size_t open = text.find('{');
    const size_t close = text.find('}');
    if (open == std::string_view::npos || close == std::string_view::npos || close <= open + 1)
        return false;
    const std::string_view dictionary = text.substr(open + 1, close - open - 1);
    return ParseElementType(dictionary) && ParseShape(dictionary);
}

bool RawImageNpy::ParseElementType(std::string_view dictionary)
{
    const auto description = ValueOf(dictionary, "'descr'", '\'', '\'');
    if (!description)
        return false;
    for (const ElementType& type : elementTypes)
    {
        if (description->find(type.code) != std::string_view::npos)
        {
            pixelType = type.pixelType;
            return true;
        }
    }
    return log.Fail(L"Unsupported pixel type");
}

bool RawImageNpy::ParseShape(std::string_view dictionary)
{
    const auto shape = ValueOf(dictionary, "'shape'", '(', ')');
    if (!shape)
        return false;
    const std::vector<std::string_view> tokens = Tokens(*shape);
    const auto commas = static_cast<size_t>(std::count(shape->begin(), shape->end(), ','));
    if (tokens.size() != commas + 1 || tokens.size() < 2 || tokens.size() > 3)
        return log.Fail(L"Unsupported data structure");

    TakeSizes(tokens);
    if (width < 1 || width > 65535 || height < 1 || height > 65535)
        return log.Fail(L"Invalid resolution");
    if (frameCount > mostFrames)
        return log.Fail(L"The number of frames is too large");
    return true;
}

void RawImageNpy::TakeSizes(std::span<const std::string_view> tokens)
{
    std::array<uint32_t, 3> sizes = {};
    std::transform(tokens.begin(), tokens.end(), sizes.begin(), ToNumber);
    const auto [d0, d1, d2] = sizes;
    const bool isColour = tokens.size() == 3 && d2 == 3 && pixelType == PixelType::UInt8;
    if (isColour)
        pixelType = PixelType::RGB24;
    if (tokens.size() == 2 || isColour)
    {
        frameCount = 1;
        height = d0;
        width = d1;
    }
    else if (d0 != d1 || d0 == d2)
    {
        frameCount = d0;
        height = d1;
        width = d2;
    }
    else
    {
        // Only the first two dimensions are equal: the last one is the number of frames.
        frameCount = d2;
        height = d1;
        width = d0;
    }
}

} // namespace Tav::Imaging::RawImage
