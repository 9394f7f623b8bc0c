#include "core/PixelType.h"

#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;

namespace {

struct Row
{
    uint32_t value;
    const wchar_t* name;
    uint32_t bits;
    uint32_t bytes;
};

constexpr Row rows[] = {
    {0, L"<unknown>", 0, 0},
    {1, L"UInt4", 4, 1},
    {2, L"UInt8", 8, 1},
    {3, L"UInt16", 16, 2},
    {4, L"UInt32", 32, 4},
    {5, L"Int8", 8, 1},
    {6, L"Int16", 16, 2},
    {7, L"Int32", 32, 4},
    {8, L"Float16", 16, 2},
    {9, L"Float32", 32, 4},
    {10, L"Double64", 64, 8},
    {11, L"Complex64", 64, 8},
    {12, L"Complex128", 128, 16},
    {13, L"RGB24", 24, 3},
    {14, L"RGBA32", 32, 4},
    {15, L"<unknown>", 0, 0},
    {0xFFFFFFFF, L"<unknown>", 0, 0},
};

TEST(PixelType, HasItsNameAndSizes)
{
    for (const Row& row : rows)
    {
        const auto type = static_cast<PixelType>(row.value);
        EXPECT_EQ(PixelTypeName(type), row.name) << row.value;
        EXPECT_EQ(BitsPerPixel(type), row.bits) << row.value;
        EXPECT_EQ(BytesPerPixel(type), row.bytes) << row.value;
    }
}

} // namespace
