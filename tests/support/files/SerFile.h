#pragma once

#include "support/ByteWriter.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

/// One element of a series: a calibrated image. Its samples are given as raw bytes.
struct SerElement
{
    uint16_t dataType = 1;
    uint32_t width = 0;
    uint32_t height = 0;
    Bytes samples = {};

    static constexpr size_t calibrationBytes = 40;
    static constexpr size_t headerBytes = calibrationBytes + 10;

    void AppendTo(ByteWriter& file) const
    {
        for (size_t i = 0; i < calibrationBytes; ++i)
            file.Put(uint8_t{0xCA});
        file.Put(dataType).Put(width).Put(height).Put(samples);
    }

    [[nodiscard]] Bytes Build() const
    {
        ByteWriter element;
        AppendTo(element);
        return std::move(element.bytes);
    }
};

/// Builds a SER file: header, array of the elements' offsets, elements. A word that is set says so whether
/// it is true or not; every other word follows from the elements.
class SerFile
{
public:
    SerFile& ByteOrderMark(uint16_t word)
    {
        byteOrderMark = word;
        return *this;
    }

    SerFile& Identifier(uint16_t word)
    {
        identifier = word;
        return *this;
    }

    /// 0x0210 has offsets of 4 bytes, every later version has offsets of 8.
    SerFile& Version(uint16_t word)
    {
        version = word;
        return *this;
    }

    SerFile& DataTypeIdentifier(uint32_t word)
    {
        dataTypeIdentifier = word;
        return *this;
    }

    SerFile& TotalCount(uint32_t count)
    {
        totalCount = count;
        return *this;
    }

    SerFile& ValidCount(uint32_t count)
    {
        validCount = count;
        return *this;
    }

    /// The header's word alone; the array stays where it is.
    SerFile& ArrayOffset(uint64_t offset)
    {
        arrayOffset = offset;
        return *this;
    }

    /// What the array says of an element; the element stays where it is.
    SerFile& ElementOffset(size_t index, uint64_t offset)
    {
        elementOffsets[index] = offset;
        return *this;
    }

    SerFile& Element(SerElement element)
    {
        elements.push_back(std::move(element));
        return *this;
    }

    /// An element of bytes.
    SerFile& Element(uint32_t width, uint32_t height, Bytes samples)
    {
        return Element({1, width, height, std::move(samples)});
    }

    [[nodiscard]] size_t OffsetBytes() const { return version == 0x0210 ? 4 : 8; }
    [[nodiscard]] size_t HeaderBytes() const { return 22 + OffsetBytes(); }

    /// Where the elements begin.
    [[nodiscard]] size_t FirstElement() const { return HeaderBytes() + elements.size() * OffsetBytes(); }

    [[nodiscard]] Bytes Build() const
    {
        const auto elementCount = static_cast<uint32_t>(elements.size());
        ByteWriter file;
        file.Put(byteOrderMark).Put(identifier).Put(version).Put(dataTypeIdentifier);
        file.Put(tagTypeIdentifier);
        file.Put(totalCount.value_or(elementCount)).Put(validCount.value_or(elementCount));
        PutOffset(file, arrayOffset.value_or(HeaderBytes()));

        uint64_t place = FirstElement();
        for (size_t i = 0; i < elements.size(); ++i)
        {
            const auto claimed = elementOffsets.find(i);
            PutOffset(file, claimed != elementOffsets.end() ? claimed->second : place);
            place += SerElement::headerBytes + elements[i].samples.size();
        }
        for (const SerElement& element : elements)
            element.AppendTo(file);
        return std::move(file.bytes);
    }

private:
    void PutOffset(ByteWriter& file, uint64_t offset) const
    {
        if (OffsetBytes() == 4)
            file.Put(static_cast<uint32_t>(offset));
        else
            file.Put(offset);
    }

    uint16_t byteOrderMark = 0x4949;
    uint16_t identifier = 0x0197;
    uint16_t version = 0x0210;
    uint32_t dataTypeIdentifier = 0x4122;
    /// Elements tagged with their time; readers of pictures do not care.
    uint32_t tagTypeIdentifier = 0x4152;
    std::optional<uint32_t> totalCount;
    std::optional<uint32_t> validCount;
    std::optional<uint64_t> arrayOffset;
    std::map<size_t, uint64_t> elementOffsets;
    std::vector<SerElement> elements;
};
