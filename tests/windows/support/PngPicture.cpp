#include "windows/support/PngPicture.h"

#include "support/FileBytes.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/WicClient.h"

#include <gtest/gtest.h>

PngPicture::PngPicture(const std::filesystem::path& file)
{
    const std::vector<uint8_t> content = FileBytes(file);
    if (content.empty())
    {
        ADD_FAILURE() << "there is no " << file;
        return;
    }
    const ComPtr<IWICBitmapDecoder> decoder = Discover(content);
    EXPECT_TRUE(FormatOf(decoder) == GUID_ContainerFormatPng) << file;
    if (!decoder)
        return;
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(decoder, 0);
    EXPECT_EQ(frame->GetSize(&width, &height), S_OK);
    // Wine converts gray pixels to these in two steps only.
    const ComPtr<IWICBitmapSource> opaque = Converted(frame.Get(), GUID_WICPixelFormat32bppBGR);
    pixels = PixelsOf(Converted(opaque.Get(), GUID_WICPixelFormat24bppBGR).Get(), 3);
}

std::vector<uint8_t> PngPicture::Part(uint32_t left, uint32_t top, uint32_t partWidth,
                                      uint32_t partHeight) const
{
    std::vector<uint8_t> part;
    for (uint32_t y = top; y < top + partHeight; ++y)
    {
        for (uint32_t x = left; x < left + partWidth; ++x)
        {
            for (uint32_t colour = 0; colour < 3; ++colour)
                part.push_back(pixels.at((size_t{y} * width + x) * 3 + colour));
        }
    }
    return part;
}
