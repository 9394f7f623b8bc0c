#include "windows/PngPicture.h"

#include "windows/DecoderClient.h"
#include "windows/WicClient.h"

#include <gtest/gtest.h>

PngPicture::PngPicture(const TemporaryFolder& folder, const std::string& name)
{
    const std::vector<uint8_t> content = folder.Read(name);
    if (content.empty())
    {
        ADD_FAILURE() << "there is no " << name;
        return;
    }
    const ComPtr<IWICBitmapDecoder> decoder = Discover(content);
    EXPECT_TRUE(FormatOf(decoder) == GUID_ContainerFormatPng) << name;
    if (!decoder)
        return;
    const ComPtr<IWICBitmapFrameDecode> frame = Frame(decoder, 0);
    EXPECT_EQ(frame->GetSize(&width, &height), S_OK);
    pixels = PixelsOf(Converted(frame.Get(), GUID_WICPixelFormat24bppBGR).Get(), 3);
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
