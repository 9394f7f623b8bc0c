#include "platform/jpeg/JpegDecoder.h"

#include <turbojpeg.h>

#include <memory>

namespace {

struct HandleCloser
{
    void operator()(void* handle) const { tjDestroy(handle); }
};

} // namespace

std::optional<JpegPicture> DecodeJpeg(std::span<const uint8_t> file, uint32_t longestSide)
{
    const std::unique_ptr<void, HandleCloser> decoder{tjInitDecompress()};
    int width = 0;
    int height = 0;
    int subsampling = 0;
    int colourSpace = 0;
    if (!decoder || tjDecompressHeader3(decoder.get(), file.data(), file.size(), &width, &height,
                                        &subsampling, &colourSpace) != 0)
        return std::nullopt;
    JpegPicture picture{static_cast<uint32_t>(width), static_cast<uint32_t>(height), 1, {}};
    if (picture.width > longestSide || picture.height > longestSide)
        return std::nullopt;
    picture.pixels.resize(size_t{3} * picture.width * picture.height);
    if (tjDecompress2(decoder.get(), file.data(), file.size(), picture.pixels.data(), width, 0, height,
                      TJPF_RGB, 0) != 0)
        return std::nullopt;
    return picture;
}
