#pragma once

#include "support/BytesAndLines.h"

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <span>
#include <string>
#include <vector>

/// One way to use the product, which is tried with many inputs.
struct Target
{
    std::string name;
    std::function<void(std::span<const uint8_t> input)> run;
};

/// Ends the program if a condition does not hold that must hold for every input.
inline void Require(bool condition)
{
    if (!condition)
        std::abort();
}

// The targets of each source file.
[[nodiscard]] std::vector<Target> FileTargets();
[[nodiscard]] std::vector<Target> BuiltFileTargets();
[[nodiscard]] std::vector<Target> FrameTargets();
[[nodiscard]] std::vector<Target> CopyTargets();
[[nodiscard]] std::vector<Target> PropertyTargets();
[[nodiscard]] std::vector<Target> IdentificationTargets();
[[nodiscard]] std::vector<Target> TextTargets();
