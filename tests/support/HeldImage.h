#pragma once

#include "core/Image.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

/// An image that holds its samples; its range is the test's to set.
template <typename T>
class HeldImage final : public Tav::Imaging::RawImage::Image<T>
{
public:
    HeldImage(uint32_t imageWidth, uint32_t imageHeight, std::vector<T> imageSamples)
        : Tav::Imaging::RawImage::Image<T>(imageWidth, imageHeight), samples(std::move(imageSamples))
    {}

    void Load(size_t first, std::span<T> block) const override
    {
        std::copy_n(samples.begin() + static_cast<std::ptrdiff_t>(first), block.size(), block.begin());
    }

private:
    std::vector<T> samples;
};
