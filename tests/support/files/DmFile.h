#pragma once

#include "support/ByteWriter.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

/// A version of the tag file format, 3 or 4.
struct DmLayout
{
    uint32_t version = 3;
    /// What stands in the upper halves of version 4's fields of 8 bytes; writers put zeros there.
    uint32_t upperHalf = 0;
};

/// Codes of the types of values.
namespace DmType {
constexpr uint32_t none = 0;
constexpr uint32_t int16 = 2;
constexpr uint32_t int32 = 3;
constexpr uint32_t uint16 = 4;
constexpr uint32_t uint32 = 5;
constexpr uint32_t float32 = 6;
constexpr uint32_t float64 = 7;
constexpr uint32_t boolean = 8;
constexpr uint32_t character = 9;
constexpr uint32_t byte = 10;
constexpr uint32_t int64 = 11;
constexpr uint32_t uint64 = 12;
constexpr uint32_t structure = 15;
constexpr uint32_t string = 18;
constexpr uint32_t array = 20;
} // namespace DmType

/// Writes the structure of a tag file, whose numbers are big-endian.
class DmWriter : public ByteWriter
{
public:
    explicit DmWriter(const DmLayout& fileLayout) : ByteWriter(ByteOrder::BigEndian), layout(fileLayout) {}

    /// A size, a count or a type code: 4 bytes in version 3, 8 bytes in version 4.
    DmWriter& Word(uint32_t number)
    {
        if (layout.version == 4)
            Put(layout.upperHalf);
        Put(number);
        return *this;
    }

    /// The description of a struct: its name's length, then each field's name's length and type.
    DmWriter& Fields(const std::vector<uint32_t>& types)
    {
        Word(0).Word(static_cast<uint32_t>(types.size()));
        for (const uint32_t type : types)
            Word(0).Word(type);
        return *this;
    }

private:
    DmLayout layout;
};

/// An image as Digital Micrograph tells of it.
struct DmImage
{
    uint32_t dataType = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    /// The third dimension, when there is one.
    std::optional<uint32_t> depth = std::nullopt;
    /// The array of samples: the type of its elements, how many there are, and their bytes.
    uint32_t elementType = DmType::byte;
    uint32_t elementCount = 0;
    Bytes samples = {};
};

/// The tags of one group, in their order.
class DmTags
{
public:
    static constexpr uint8_t groupKind = 20;
    static constexpr uint8_t dataKind = 21;

    explicit DmTags(const DmLayout& fileLayout) : layout(fileLayout), entries(fileLayout) {}

    DmTags& Group(std::string_view label, const DmTags& members)
    {
        return Entry(groupKind, label, members.AsGroup());
    }

    DmTags& UInt32(std::string_view label, uint32_t number)
    {
        return Value(label, DmType::uint32, ByteWriter().Put(number).bytes);
    }

    /// A value of any simple type, as its bytes, which are little-endian.
    DmTags& Value(std::string_view label, uint32_t type, const Bytes& value)
    {
        return Data(label, type, DmWriter{layout}, value);
    }

    /// Text of 16-bit characters.
    DmTags& String(std::string_view label, std::u16string_view text)
    {
        ByteWriter characters;
        for (const char16_t character : text)
            characters.Put(static_cast<uint16_t>(character));
        return Data(label, DmType::string, DmWriter{layout}.Word(static_cast<uint32_t>(text.size())),
                    characters.bytes);
    }

    DmTags& Struct(std::string_view label, const std::vector<uint32_t>& fieldTypes, const Bytes& values)
    {
        return Data(label, DmType::structure, DmWriter{layout}.Fields(fieldTypes), values);
    }

    DmTags& Array(std::string_view label, uint32_t elementType, uint32_t count, const Bytes& elements)
    {
        return Data(label, DmType::array, DmWriter{layout}.Word(elementType).Word(count), elements);
    }

    DmTags& StructArray(std::string_view label, const std::vector<uint32_t>& fieldTypes, uint32_t count,
                        const Bytes& elements)
    {
        return Data(label, DmType::array,
                    DmWriter{layout}.Word(DmType::structure).Fields(fieldTypes).Word(count), elements);
    }

    /// An entry of the list of images.
    DmTags& Image(const DmImage& image)
    {
        DmTags dimensions{layout};
        dimensions.UInt32("", image.width).UInt32("", image.height);
        if (image.depth)
            dimensions.UInt32("", *image.depth);
        DmTags imageData{layout};
        imageData.Array("Data", image.elementType, image.elementCount, image.samples)
            .UInt32("DataType", image.dataType)
            .Group("Dimensions", dimensions)
            .UInt32("PixelDepth", 4);
        return Group("", DmTags{layout}.Group("ImageData", imageData).String("Name", u"sample"));
    }

    /// A data tag: delimiter, number of words that describe the type, type, the rest of the description
    /// (whose words follow the type) and the value.
    DmTags& Data(std::string_view label, uint32_t type, const DmWriter& description, const Bytes& value)
    {
        const size_t wordBytes = layout.version == 4 ? 8 : 4;
        DmWriter contents{layout};
        contents.Text("%%%%");
        contents.Word(static_cast<uint32_t>(1 + description.bytes.size() / wordBytes));
        contents.Word(type).Put(description.bytes).Put(value);
        return Entry(dataKind, label, contents.bytes);
    }

    /// An entry of any kind: kind, label, in version 4 the size of the contents, and the contents.
    DmTags& Entry(uint8_t kind, std::string_view label, const Bytes& contents)
    {
        entries.Put(kind).Put(static_cast<uint16_t>(label.size())).Text(label);
        if (layout.version == 4)
            entries.Word(static_cast<uint32_t>(contents.size()));
        entries.Put(contents);
        ++tagCount;
        return *this;
    }

    /// The number of tags that the group states, whatever follows it.
    DmTags& ClaimCount(uint32_t number)
    {
        claimedCount = number;
        return *this;
    }

    /// The group: flags (sorted, closed), number of tags, tags.
    [[nodiscard]] Bytes AsGroup() const
    {
        DmWriter group{layout};
        group.Put(uint8_t{1}).Put(uint8_t{0});
        group.Word(claimedCount.value_or(tagCount)).Put(entries.bytes);
        return std::move(group.bytes);
    }

private:
    DmLayout layout;
    DmWriter entries;
    uint32_t tagCount = 0;
    std::optional<uint32_t> claimedCount;
};

/// Builds a tag file: version, size of the root group, byte order of the values, root group, eight zeros.
class DmFile
{
public:
    explicit DmFile(const DmLayout& fileLayout) : layout(fileLayout), version(fileLayout.version) {}

    DmFile& Root(const DmTags& tags) { return Content(tags.AsGroup()); }

    /// Any bytes in place of the root group.
    DmFile& Content(Bytes bytes)
    {
        content = std::move(bytes);
        return *this;
    }

    DmFile& Version(uint32_t number)
    {
        version = number;
        return *this;
    }

    /// The size that the header states for the root group.
    DmFile& ClaimRootBytes(uint32_t number)
    {
        claimedRootBytes = number;
        return *this;
    }

    /// 1 where values are little-endian.
    DmFile& ByteOrderWord(uint32_t number)
    {
        byteOrderWord = number;
        return *this;
    }

    [[nodiscard]] Bytes Build() const
    {
        DmWriter file{layout};
        file.Put(version);
        file.Word(claimedRootBytes.value_or(static_cast<uint32_t>(content.size())));
        file.Put(byteOrderWord).Put(content).Put(uint64_t{0});
        return std::move(file.bytes);
    }

private:
    DmLayout layout;
    uint32_t version;
    std::optional<uint32_t> claimedRootBytes;
    uint32_t byteOrderWord = 1;
    Bytes content;
};
