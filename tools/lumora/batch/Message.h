#pragma once

#include "lumora/console/Failure.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace Lumora {

/// A structure of our own: its member function template `Transfer` passes each of its fields to an archive,
/// in the same order for both directions.
template <class Type>
concept Structure = std::is_class_v<Type>;

/// Turns structures into bytes, for another process of this program on the same machine.
class MessageWriter
{
public:
    template <std::integral Type>
    void Field(const Type& value)
    {
        const size_t size = bytes.size();
        bytes.resize(size + sizeof(value));
        std::memcpy(bytes.data() + size, &value, sizeof(value));
    }

    void Field(std::wstring& text)
    {
        Field(text.size());
        for (const wchar_t character : text)
            Field(character);
    }

    void Field(std::vector<uint8_t>& content)
    {
        Field(content.size());
        bytes.insert(bytes.end(), content.begin(), content.end());
    }

    template <class Type>
    void Field(std::vector<Type>& values)
    {
        Field(values.size());
        for (Type& value : values)
            Field(value);
    }

    template <class Type>
    void Field(std::optional<Type>& value)
    {
        Field(value.has_value());
        if (value)
            Field(*value);
    }

    void Field(std::variant<std::monostate, uint32_t, std::wstring>& value)
    {
        Field(value.index());
        if (const uint32_t* const number = std::get_if<uint32_t>(&value))
            Field(*number);
        else if (std::wstring* const text = std::get_if<std::wstring>(&value))
            Field(*text);
    }

    template <Structure Type>
    void Field(Type& value)
    {
        value.Transfer(*this);
    }

    [[nodiscard]] std::vector<uint8_t> Take() { return std::exchange(bytes, {}); }

private:
    std::vector<uint8_t> bytes;
};

/// Reads what a MessageWriter has written, into new structures. Throws a Failure when bytes are missing.
class MessageReader
{
public:
    explicit MessageReader(std::vector<uint8_t> message) : bytes(std::move(message)) {}

    template <std::integral Type>
    void Field(Type& value)
    {
        RequireBytes(sizeof(value));
        std::memcpy(&value, bytes.data() + position, sizeof(value));
        position += sizeof(value);
    }

    void Field(std::wstring& text)
    {
        const size_t size = Count(sizeof(wchar_t));
        text.resize(size);
        for (wchar_t& character : text)
            Field(character);
    }

    void Field(std::vector<uint8_t>& content)
    {
        const size_t size = Count(1);
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(position);
        content.assign(begin, begin + static_cast<std::ptrdiff_t>(size));
        position += size;
    }

    template <class Type>
    void Field(std::vector<Type>& values)
    {
        values.resize(Count(1));
        for (Type& value : values)
            Field(value);
    }

    template <class Type>
    void Field(std::optional<Type>& value)
    {
        bool hasValue = false;
        Field(hasValue);
        if (hasValue)
            Field(value.emplace());
    }

    void Field(std::variant<std::monostate, uint32_t, std::wstring>& value)
    {
        size_t index = 0;
        Field(index);
        if (index == 1)
            Field(value.emplace<uint32_t>());
        else if (index == 2)
            Field(value.emplace<std::wstring>());
    }

    template <Structure Type>
    void Field(Type& value)
    {
        value.Transfer(*this);
    }

private:
    void RequireBytes(size_t count) const
    {
        if (bytes.size() - position < count)
            throw Failure{incomplete};
    }

    /// The number of elements that follow, each of at least so many bytes.
    size_t Count(size_t elementSize)
    {
        size_t count = 0;
        Field(count);
        if (count > (bytes.size() - position) / elementSize)
            throw Failure{incomplete};
        return count;
    }

    static constexpr const wchar_t* incomplete = L"a message between two processes is not complete";

    std::vector<uint8_t> bytes;
    size_t position = 0;
};

} // namespace Lumora
