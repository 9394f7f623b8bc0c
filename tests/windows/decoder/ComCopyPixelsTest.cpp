#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"

#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <span>
#include <vector>

namespace {

constexpr uint8_t untouched = 0xEE;

/// The frame of a file's only section.
ComPtr<IWICBitmapFrameDecode> OnlyFrame(const std::vector<uint8_t>& file)
{
    TestStream stream{file};
    return Frame(NewDecoder(stream), 0);
}

/// Rows 0 10 20 30 and 40 50 60 255.
ComPtr<IWICBitmapFrameDecode> GrayFrame()
{
    return OnlyFrame(GrayStack(1));
}

/// One call of CopyPixels into a buffer that goes on behind the size that the frame is told.
struct Copy
{
    Copy(const ComPtr<IWICBitmapFrameDecode>& frame, std::optional<WICRect> rect, UINT stride, UINT size)
        : buffer(size_t{64}, untouched), told(size)
    {
        result = frame->CopyPixels(rect ? &*rect : nullptr, stride, size, buffer.data());
    }

    /// True when not a byte has been written.
    [[nodiscard]] bool WroteNothing() const { return buffer == std::vector<uint8_t>(64, untouched); }

    /// The buffer as far as the frame was told of it; a test failure when it wrote any further.
    [[nodiscard]] std::vector<uint8_t> Content() const
    {
        for (size_t i = told; i < buffer.size(); ++i)
            EXPECT_EQ(buffer[i], untouched) << "behind the buffer, at " << i;
        return {buffer.begin(), buffer.begin() + static_cast<ptrdiff_t>(told)};
    }

    std::vector<uint8_t> buffer;
    size_t told;
    HRESULT result;
};

} // namespace

TEST(CopyPixels, CopiesTheWholePictureWithoutARectangle)
{
    const Copy copy{GrayFrame(), std::nullopt, 4, 8};
    EXPECT_EQ(copy.result, S_OK);
    EXPECT_EQ(copy.Content(), grayPictures[0]);
}

TEST(CopyPixels, LeavesThePaddingOfRowsAlone)
{
    constexpr uint8_t u = untouched;
    const Copy copy{GrayFrame(), std::nullopt, 6, 12};
    EXPECT_EQ(copy.result, S_OK);
    EXPECT_EQ(copy.Content(), (std::vector<uint8_t>{0, 10, 20, 30, u, u, 40, 50, 60, 255, u, u}));
}

TEST(CopyPixels, CopiesThePartThatIsAskedFor)
{
    const Copy copy{GrayFrame(), WICRect{1, 0, 2, 2}, 2, 4};
    EXPECT_EQ(copy.result, S_OK);
    EXPECT_EQ(copy.Content(), (std::vector<uint8_t>{10, 20, 50, 60}));

    const Copy corner{GrayFrame(), WICRect{3, 1, 1, 1}, 1, 1};
    EXPECT_EQ(corner.result, S_OK);
    EXPECT_EQ(corner.Content(), (std::vector<uint8_t>{255}));
}

TEST(CopyPixels, TakesThreeBytesForAPixelInColor)
{
    const std::vector<uint8_t> colors = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    const ComPtr<IWICBitmapFrameDecode> frame =
        OnlyFrame(MrcFile().Size(3, 2, 1).Mode(16).Samples(colors).Build());
    const Copy whole{frame, std::nullopt, 9, 18};
    EXPECT_EQ(whole.result, S_OK);
    EXPECT_EQ(whole.Content(), colors);

    constexpr uint8_t u = untouched;
    const Copy part{frame, WICRect{1, 0, 2, 2}, 7, 14};
    EXPECT_EQ(part.result, S_OK);
    EXPECT_EQ(part.Content(), (std::vector<uint8_t>{4, 5, 6, 7, 8, 9, u, 14, 15, 16, 17, 18, 19, u}));
}

TEST(CopyPixels, AcceptsExactlyTheRectanglesWithinThePicture)
{
    const ComPtr<IWICBitmapFrameDecode> frame = GrayFrame();
    constexpr std::array lengths = {-1, 0, 1, 2, 3, 4, 5};
    for (const INT x : lengths)
        for (const INT y : lengths)
            for (const INT width : lengths)
                for (const INT height : lengths)
                {
                    const Copy copy{frame, WICRect{x, y, width, height}, 5, 25};
                    const bool within =
                        x >= 0 && y >= 0 && width >= 0 && height >= 0 && x + width <= 4 && y + height <= 2;
                    std::vector<uint8_t> expected(25, untouched);
                    for (INT row = 0; within && row < height; ++row)
                        for (INT column = 0; column < width; ++column)
                            expected[static_cast<size_t>(5 * row + column)] =
                                grayPictures[0][static_cast<size_t>(4 * (y + row) + x + column)];
                    ASSERT_EQ(copy.result, within ? S_OK : E_INVALIDARG)
                        << x << ' ' << y << ' ' << width << ' ' << height;
                    ASSERT_EQ(copy.Content(), expected) << x << ' ' << y << ' ' << width << ' ' << height;
                }
}

TEST(CopyPixels, RefusesRectanglesWhoseEndsCannotBeAdded)
{
    const ComPtr<IWICBitmapFrameDecode> frame = GrayFrame();
    for (const WICRect& rect :
         {WICRect{INT_MAX, 0, 1, 1}, WICRect{1, 0, INT_MAX, 1}, WICRect{0, INT_MAX, 1, 1},
          WICRect{0, 1, 1, INT_MAX}, WICRect{INT_MAX, 0, INT_MAX, 1}, WICRect{0, INT_MAX, 1, INT_MAX},
          WICRect{INT_MAX, INT_MAX, INT_MAX, INT_MAX}, WICRect{INT_MIN, 0, 1, 1}, WICRect{0, INT_MIN, 1, 1},
          WICRect{0, 0, INT_MIN, 1}, WICRect{0, 0, 1, INT_MIN}, WICRect{INT_MIN, 0, INT_MIN, 1},
          WICRect{0, 0, INT_MAX, INT_MAX}, WICRect{INT_MAX, 0, 0, 0}, WICRect{0, INT_MAX, 0, 0}})
    {
        const Copy copy{frame, rect, 4, 8};
        EXPECT_EQ(copy.result, E_INVALIDARG)
            << rect.X << ' ' << rect.Y << ' ' << rect.Width << ' ' << rect.Height;
        EXPECT_TRUE(copy.WroteNothing());
    }
}

TEST(CopyPixels, NeedsABuffer)
{
    const ComPtr<IWICBitmapFrameDecode> frame = GrayFrame();
    EXPECT_EQ(frame->CopyPixels(nullptr, 4, 8, nullptr), E_INVALIDARG);
    EXPECT_EQ(frame->CopyPixels(nullptr, 4, 7, nullptr), E_INVALIDARG) << "before its size is looked at";
    const WICRect nothing{0, 0, 0, 0};
    EXPECT_EQ(frame->CopyPixels(&nothing, 4, 0, nullptr), E_INVALIDARG);
}

TEST(CopyPixels, NeedsAStride)
{
    const ComPtr<IWICBitmapFrameDecode> frame = GrayFrame();
    for (const std::optional<WICRect>& rect :
         {std::optional<WICRect>{}, {WICRect{0, 0, 4, 1}}, {WICRect{0, 0, 4, 0}}, {WICRect{0, 0, 0, 0}}})
    {
        for (const UINT size : {0u, 8u})
        {
            const Copy copy{frame, rect, 0, size};
            EXPECT_EQ(copy.result, E_INVALIDARG);
            EXPECT_TRUE(copy.WroteNothing());
        }
    }
}

TEST(CopyPixels, NeedsWholeStridesForAllRowsTheLastOneIncluded)
{
    struct Room
    {
        UINT stride;
        UINT size;
        HRESULT result;
    };
    const ComPtr<IWICBitmapFrameDecode> frame = GrayFrame();
    for (const Room& room : {
             Room{4, 8, S_OK},
             Room{4, 7, WINCODEC_ERR_INSUFFICIENTBUFFER},
             Room{4, 0, WINCODEC_ERR_INSUFFICIENTBUFFER},
             Room{4, 9, S_OK},
             Room{10, 20, S_OK},
             Room{10, 19, WINCODEC_ERR_INSUFFICIENTBUFFER},
             // All pixels would fit, the padding of the last row does not.
             Room{10, 14, WINCODEC_ERR_INSUFFICIENTBUFFER},
             Room{0x80000000, 64, WINCODEC_ERR_INSUFFICIENTBUFFER},
             Room{UINT_MAX, 64, WINCODEC_ERR_INSUFFICIENTBUFFER},
         })
    {
        const Copy copy{frame, std::nullopt, room.stride, room.size};
        EXPECT_EQ(copy.result, room.result) << room.stride << ' ' << room.size;
        EXPECT_EQ(copy.WroteNothing(), room.result != S_OK);
    }
}

TEST(CopyPixels, TakesTheWordOfTheCallerForAHugeBuffer)
{
    // One row needs one stride, whatever its length; only the row itself is written.
    const WICRect row{0, 1, 4, 1};
    std::vector<uint8_t> buffer(8, untouched);
    EXPECT_EQ(GrayFrame()->CopyPixels(&row, UINT_MAX, UINT_MAX, buffer.data()), S_OK);
    constexpr uint8_t u = untouched;
    EXPECT_EQ(buffer, (std::vector<uint8_t>{40, 50, 60, 255, u, u, u, u}));
    std::vector<uint8_t> picture(8, untouched);
    EXPECT_EQ(GrayFrame()->CopyPixels(nullptr, 4, UINT_MAX, picture.data()), S_OK);
    EXPECT_EQ(picture, grayPictures[0]);
}

TEST(CopyPixels, LooksAtTheRectangleBeforeTheBuffer)
{
    const ComPtr<IWICBitmapFrameDecode> frame = GrayFrame();
    EXPECT_EQ((Copy{frame, WICRect{0, 0, 5, 2}, 5, 9}.result), E_INVALIDARG);
    EXPECT_EQ((Copy{frame, WICRect{0, 0, 4, 3}, 4, 0}.result), E_INVALIDARG);
    EXPECT_EQ((Copy{frame, WICRect{0, 0, 4, 2}, 4, 0}.result), WINCODEC_ERR_INSUFFICIENTBUFFER);
}

TEST(CopyPixels, CopiesNoRowsIntoAnyBuffer)
{
    const ComPtr<IWICBitmapFrameDecode> frame = GrayFrame();
    for (const WICRect& rect : {WICRect{0, 0, 4, 0}, WICRect{0, 2, 4, 0}, WICRect{4, 2, 0, 0}})
    {
        for (const UINT size : {0u, 1u, 64u})
        {
            const Copy copy{frame, rect, 4, size};
            EXPECT_EQ(copy.result, S_OK);
            EXPECT_TRUE(copy.WroteNothing());
        }
    }
}

TEST(CopyPixels, CopiesEmptyRowsWhereTheyWouldFit)
{
    const ComPtr<IWICBitmapFrameDecode> frame = GrayFrame();
    for (const WICRect& rect : {WICRect{0, 0, 0, 2}, WICRect{4, 0, 0, 2}})
    {
        const Copy copy{frame, rect, 4, 8};
        EXPECT_EQ(copy.result, S_OK);
        EXPECT_TRUE(copy.WroteNothing());
        EXPECT_EQ((Copy{frame, rect, 4, 7}.result), WINCODEC_ERR_INSUFFICIENTBUFFER);
    }
}

TEST(CopyPixels, LetsRowsOverlapUnderAStrideShorterThanARow)
{
    const Copy copy{GrayFrame(), std::nullopt, 3, 7};
    EXPECT_EQ(copy.result, S_OK);
    EXPECT_EQ(copy.Content(), (std::vector<uint8_t>{0, 10, 20, 40, 50, 60, 255}));
}

TEST(CopyPixels, NeverWritesBehindTheBuffer)
{
    // Two strides fit, so the call is fine; the last row is longer than its stride and is cut.
    const Copy copy{GrayFrame(), std::nullopt, 3, 6};
    EXPECT_EQ(copy.result, S_OK);
    EXPECT_EQ(copy.Content(), (std::vector<uint8_t>{0, 10, 20, 40, 50, 60}));
    const Copy narrow{GrayFrame(), std::nullopt, 1, 2};
    EXPECT_EQ(narrow.result, S_OK);
    EXPECT_EQ(narrow.Content(), (std::vector<uint8_t>{0, 40}));
}
