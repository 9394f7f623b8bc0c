#pragma once

#include <cstdint>

namespace Lumora {

/// The FNV-1a hash of a sequence of numbers.
class Hash
{
public:
    constexpr Hash() = default;
    /// Goes on from the hash of what was before.
    constexpr explicit Hash(uint32_t before) noexcept : hash(before) {}

    constexpr void Add(uint32_t value) noexcept
    {
        constexpr uint32_t prime = 16'777'619;
        hash = (hash ^ value) * prime;
    }

    [[nodiscard]] constexpr uint32_t Value() const noexcept { return hash; }

private:
    uint32_t hash = 2'166'136'261;
};

} // namespace Lumora
