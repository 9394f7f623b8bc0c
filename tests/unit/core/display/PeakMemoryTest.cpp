#include "support/display/FrameReader.h"
#include "support/display/TypeName.h"
#include "support/meters/MemoryMeter.h"
#include "support/streams/TestStream.h"

#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;

namespace {

class PeakMemory : public testing::TestWithParam<uint32_t>
{};

// One block for the frame and its picture, and beside it what does not depend on the frame's size: histograms
// of 16-bit codes, and the addresses before and behind large pages, which are given back at once.
TEST_P(PeakMemory, IsThatOfTheStoredFrame)
{
    constexpr uint32_t edge = 2048;
    constexpr int64_t besides = 4 << 20;
    const auto type = static_cast<PixelType>(GetParam());
    const int64_t pictureBytes = type == PixelType::UInt4 ? int64_t{edge} * edge : 0;
    const int64_t storedBytes =
        type == PixelType::UInt4 ? int64_t{edge} * edge / 2 : int64_t{BytesPerPixel(type)} * edge * edge;
    FrameReader reader{StoredFrame{.pixelType = type, .width = edge, .height = edge}};
    TestStream stream{std::vector<uint8_t>(static_cast<size_t>(storedBytes))};
    for (size_t i = 0; i < stream.bytes.size(); ++i)
        stream.bytes[i] = static_cast<uint8_t>(i * 2654435761U >> 24);

    const MemoryMeter memory;
    ASSERT_TRUE(reader.Read(&stream, stream.bytes.size(), readModeFrame, 0));
    EXPECT_GE(memory.Peak(), storedBytes);
    EXPECT_LE(memory.Peak(), storedBytes + pictureBytes + besides);
}

INSTANTIATE_TEST_SUITE_P(OfEveryType, PeakMemory, testing::Range(1U, 15U),
                         [](const auto& type) { return TypeName(static_cast<PixelType>(type.param)); });

} // namespace
