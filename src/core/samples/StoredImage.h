#pragma once

#include "core/samples/Image.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace Tav::Imaging::RawImage {

/// An image over the bytes of a frame, which must outlive it: `decode` returns the sample that is stored in
/// the `sampleBytes` bytes at an address.
template <typename T, size_t sampleBytes, typename Decode>
class StoredImage final : public Image<T>
{
public:
    StoredImage(uint32_t frameWidth, uint32_t frameHeight, const std::vector<uint8_t>& frameBytes,
                Decode sampleDecode)
        : Image<T>(frameWidth, frameHeight), frame(frameBytes), decode(std::move(sampleDecode))
    {}

    void Load(size_t first, std::span<T> block) const override
    {
        const uint8_t* const stored = frame.data() + first * sampleBytes;
        for (size_t i = 0; i < block.size(); ++i)
            block[i] = decode(stored + i * sampleBytes);
    }

private:
    const std::vector<uint8_t>& frame;
    Decode decode;
};

} // namespace Tav::Imaging::RawImage
