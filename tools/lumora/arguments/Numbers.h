#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace Lumora {

/// A decimal number from `lowest` to `highest`; nothing for any other text.
[[nodiscard]] constexpr std::optional<uint32_t> ParseNumber(std::wstring_view text, uint32_t lowest,
                                                            uint32_t highest) noexcept
{
    uint64_t number = 0;
    for (const wchar_t digit : text)
    {
        if (digit < L'0' || digit > L'9' || number > highest)
            return std::nullopt;
        number = number * 10 + static_cast<uint64_t>(digit - L'0');
    }
    if (text.empty() || number < lowest || number > highest)
        return std::nullopt;
    return static_cast<uint32_t>(number);
}

} // namespace Lumora
