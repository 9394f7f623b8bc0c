#include "formats/dm/DmTagWalk.h"

#include "core/stream/Text.h"

#include <string_view>

namespace Tav::Imaging::RawImage {

namespace {

constexpr uint8_t groupEntry = 20;
constexpr uint8_t dataEntry = 21;
constexpr uint32_t dataDelimiter = 0x25252525; // "%%%%"

constexpr uint32_t uint32Type = 5;
constexpr uint32_t structType = 15;
constexpr uint32_t stringType = 18;
constexpr uint32_t arrayType = 20;

/// Arrays of fewer elements hold no image worth showing.
constexpr uint32_t largeArrayElements = 10000;

/// Real files nest a dozen groups; a deeper chain is an attack on the stack.
constexpr uint32_t deepestGroup = 256;

/// Size of a simple value in bytes; nothing for a type that is not simple.
std::optional<uint64_t> SimpleTypeBytes(uint32_t type) noexcept
{
    switch (type)
    {
    case 0:
        return 0;
    case 8: // bool, char, byte
    case 9:
    case 10:
        return 1;
    case 2: // 16-bit integers
    case 4:
        return 2;
    case 3: // 32-bit integers, float
    case uint32Type:
    case 6:
        return 4;
    case 7: // double, 64-bit integers
    case 11:
    case 12:
        return 8;
    default:
        return std::nullopt;
    }
}

} // namespace

void DmTagWalk::Run()
{
    while (ReadGroup(1))
    {}
}

bool DmTagWalk::ReadGroup(uint32_t depth)
{
    constexpr uint64_t flagBytes = 2; // sorted, open
    if (depth > deepestGroup || !reader.Skip(flagBytes))
        return false;
    const auto entries = ReadWord();
    if (!entries)
        return false;
    // Every entry takes bytes from the stream, so its end limits the count.
    for (uint32_t entry = 0; entry < *entries; ++entry)
    {
        if (!ReadEntry(depth))
            return false;
    }
    return true;
}

bool DmTagWalk::ReadEntry(uint32_t depth)
{
    constexpr uint64_t contentsSizeBytes = 8;
    const auto kind = reader.ReadNumber<uint8_t>(ByteOrder::BigEndian);
    if (!kind || (*kind != groupEntry && *kind != dataEntry) || !ReadLabel())
        return false;
    if (hasWideFields && !reader.Skip(contentsSizeBytes))
        return false;
    return *kind == groupEntry ? ReadGroup(depth + 1) : ReadData();
}

bool DmTagWalk::ReadLabel()
{
    const auto length = reader.ReadNumber<uint16_t>(ByteOrder::BigEndian);
    if (!length)
        return false;
    const auto bytes = reader.ReadBytes(*length);
    if (!bytes)
        return false;
    const std::string_view label = AsText(*bytes);
    if (label == "DataType")
        tags.push_back({DmTag::Kind::DataTypeLabel, 0, 0});
    else if (label == "Dimensions")
        tags.push_back({DmTag::Kind::DimensionsLabel, 0, 0});
    else if (!label.empty() && TakesValues())
        tags.push_back({DmTag::Kind::OtherLabel, 0, 0});
    return true;
}

bool DmTagWalk::TakesValues() const
{
    if (tags.empty())
        return false;
    const DmTag::Kind last = tags.back().kind;
    return last == DmTag::Kind::DataTypeLabel || last == DmTag::Kind::DimensionsLabel ||
           last == DmTag::Kind::UInt32Value;
}

bool DmTagWalk::ReadData()
{
    const auto delimiter = reader.ReadNumber<uint32_t>(ByteOrder::BigEndian);
    // The number of type words repeats what the words themselves say.
    return delimiter == dataDelimiter && SkipWord() && ReadValue();
}

bool DmTagWalk::ReadValue()
{
    const auto type = ReadWord();
    if (!type)
        return false;
    switch (*type)
    {
    case uint32Type: {
        const auto value = reader.ReadNumber<uint32_t>(ByteOrder::LittleEndian);
        if (!value)
            return false;
        if (TakesValues())
            tags.push_back({DmTag::Kind::UInt32Value, *value, 0});
        return true;
    }
    case structType: {
        const auto valueBytes = ReadStructDescription();
        return valueBytes && reader.Skip(*valueBytes);
    }
    case stringType:
        return SkipString();
    case arrayType:
        return ReadArray();
    default:
        // A type that nobody knows takes no bytes.
        return reader.Skip(SimpleTypeBytes(*type).value_or(0));
    }
}

bool DmTagWalk::SkipString()
{
    constexpr uint64_t characterBytes = 2;
    const auto length = ReadWord();
    return length && reader.Skip(*length * characterBytes);
}

bool DmTagWalk::ReadArray()
{
    const auto type = ReadWord();
    if (!type)
        return false;
    const std::optional<uint64_t> elementBytes =
        *type == structType ? ReadStructDescription() : SimpleTypeBytes(*type);
    const auto count = elementBytes ? ReadWord() : std::nullopt;
    if (!count)
        return false;
    if (*count >= largeArrayElements)
        tags.push_back({DmTag::Kind::LargeArray, 0, reader.Position()});
    // The size wraps at 32 bits.
    return reader.Skip(static_cast<uint32_t>(*count * *elementBytes));
}

std::optional<uint64_t> DmTagWalk::ReadStructDescription()
{
    const bool hasName = SkipWord();
    const auto fields = hasName ? ReadWord() : std::nullopt;
    if (!fields)
        return std::nullopt;
    uint64_t valueBytes = 0;
    for (uint32_t field = 0; field < *fields; ++field)
    {
        const bool hasFieldName = SkipWord();
        const auto type = hasFieldName ? ReadWord() : std::nullopt;
        const auto fieldBytes = type ? SimpleTypeBytes(*type) : std::nullopt;
        if (!fieldBytes)
            return std::nullopt;
        valueBytes += *fieldBytes;
    }
    return valueBytes;
}

std::optional<uint32_t> DmTagWalk::ReadWord()
{
    if (hasWideFields && !reader.Skip(sizeof(uint32_t)))
        return std::nullopt;
    return reader.ReadNumber<uint32_t>(ByteOrder::BigEndian);
}

bool DmTagWalk::SkipWord()
{
    return reader.Skip(hasWideFields ? 8 : 4);
}

} // namespace Tav::Imaging::RawImage
