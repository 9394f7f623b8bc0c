#pragma once

#include "core/samples/Image.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

/// An image that holds its samples, with a range of the test's choice.
template <typename T>
class HeldImage final : public Tav::Imaging::RawImage::Image<T>
{
public:
    HeldImage(uint32_t imageWidth, uint32_t imageHeight, std::vector<T> imageSamples, T low = 0, T high = 0)
        : Tav::Imaging::RawImage::Image<T>(imageWidth, imageHeight), samples(std::move(imageSamples))
    {
        this->minimum = low;
        this->maximum = high;
    }

    void Load(size_t first, size_t step, std::span<T> block) const override
    {
        for (T& sample : block)
        {
            sample = samples[first];
            first += step;
        }
    }

private:
    std::vector<T> samples;
};
