#include "support/display/FrameReader.h"

#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

using namespace Tav::Imaging::RawImage;

DisplayedFrame ConvertFrame(const StoredFrame& frame)
{
    constexpr size_t headerBytes = 13;
    Bytes file(headerBytes, 0xEE);
    file.insert(file.end(), frame.bytes.begin(), frame.bytes.end());
    TestStream stream{std::move(file)};
    FrameReader reader{frame};

    DiagnosticLines diagnostics;
    const bool shown = reader.ConvertToDisplay(&stream, stream.bytes.size(), headerBytes);
    EXPECT_EQ(stream.references, 0U);
    return {shown, {reader.displayPixels.begin(), reader.displayPixels.end()}, diagnostics.Take()};
}

void ExpectDisplay(const StoredFrame& frame, const Bytes& pixels, const Lines& lines)
{
    const DisplayedFrame displayed = ConvertFrame(frame);
    EXPECT_TRUE(displayed.shown);
    EXPECT_EQ(displayed.pixels, pixels);
    EXPECT_EQ(displayed.lines, lines);
}

void ExpectReferenceDisplay(const StoredFrame& frame)
{
    const testing::Message description =
        testing::Message() << testing::PrintToString(PixelTypeName(frame.pixelType)) << ", " << frame.width
                           << " x " << frame.height << ", " << frame.bytes.size() << " bytes, byte order "
                           << static_cast<uint32_t>(frame.byteOrder) << ", flip " << frame.flipVertical
                           << ", file type " << static_cast<uint32_t>(frame.fileType) << ", strides "
                           << frame.xStride << " and " << frame.yStride;
    SCOPED_TRACE(description);

    const DisplayedFrame expected = ReferenceDisplay(frame);
    const DisplayedFrame actual = ConvertFrame(frame);
    EXPECT_EQ(actual.shown, expected.shown);
    EXPECT_EQ(actual.lines, expected.lines);
    ASSERT_EQ(actual.pixels.size(), expected.pixels.size());
    const auto difference =
        std::mismatch(actual.pixels.begin(), actual.pixels.end(), expected.pixels.begin());
    if (difference.first != actual.pixels.end())
        ADD_FAILURE() << "byte " << difference.first - actual.pixels.begin() << " is "
                      << static_cast<int>(*difference.first) << " instead of "
                      << static_cast<int>(*difference.second);
}
