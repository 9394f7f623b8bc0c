#include "support/RandomSeed.h"

#include <gtest/gtest.h>

#include <iostream>
#include <random>

uint32_t RandomSeed()
{
    // The option takes nothing higher.
    constexpr uint32_t highestSeed = 99999;
    const int32_t given = testing::GTEST_FLAG(random_seed);
    const uint32_t seed = given > 0 ? static_cast<uint32_t>(given) : std::random_device{}() % highestSeed + 1;
    std::cout << "Seed: " << seed << '\n';
    return seed;
}
