#pragma once

#include <cstdint>

/// The seed of a random test: the one that --gtest_random_seed=N gives, or a new one, which is printed so
/// that the run can be repeated with that option.
[[nodiscard]] uint32_t RandomSeed();
