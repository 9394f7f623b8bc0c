#pragma once

#include "core/samples/Image.h"
#include "core/samples/SampleDecoding.h"
#include "core/samples/Vectorised.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace Tav::Imaging::RawImage {

/// An image over the bytes of a frame, which must outlive it: `decode` returns the sample that is stored in
/// the `sampleBytes` bytes at an address.
template <typename T, size_t sampleBytes, typename Decode>
class StoredImage final : public Image<T>
{
public:
    StoredImage(uint32_t frameWidth, uint32_t frameHeight, const uint8_t* frameBytes, Decode sampleDecode)
        : Image<T>(frameWidth, frameHeight), frame(frameBytes), decode(std::move(sampleDecode))
    {}

    void Load(size_t first, size_t step, std::span<T> block) const override
    {
        const uint8_t* const stored = frame + first * sampleBytes;
        const auto load = [=, target = block.data(), count = block.size(),
                           decodeOne = decode](size_t distance) {
            for (size_t i = 0; i < count; ++i)
                target[i] = decodeOne(stored + i * distance);
        };
        if (step != 1)
            return load(step * sampleBytes);
        // Neighbours are loaded together. After them, their successors are asked for.
        Vectorised([=] { load(sampleBytes); });
        const size_t loaded = first + block.size();
        Prefetch(frame + loaded * sampleBytes,
                 std::min(block.size(), this->SampleCount() - loaded) * sampleBytes);
    }

private:
    const uint8_t* frame;
    Decode decode;
};

} // namespace Tav::Imaging::RawImage
