#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace Lumora {

/// One property of a file.
struct PropertyReading
{
    /// In words, for people.
    const wchar_t* label;
    /// For programs.
    const wchar_t* name;
    /// Nothing when the file does not have the property.
    std::variant<std::monostate, uint32_t, std::wstring> value;
};

/// What the registered property handler says about the file, always the same properties in the same order.
/// Throws a Failure when it cannot read the file.
[[nodiscard]] std::vector<PropertyReading> ReadProperties(const std::wstring& path);

} // namespace Lumora
