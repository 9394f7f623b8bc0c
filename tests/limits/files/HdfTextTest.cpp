#include "limits/Limits.h"
#include "support/files/Hdf5File.h"

#include "core/RawImageBase.h"

#include <gtest/gtest.h>

#include <string>

using namespace Tav::Imaging::RawImage;

// Texts as long as half of the file.

namespace {

constexpr size_t textBytes = size_t{16} << 20;

Bytes WithTexts(const std::string& text)
{
    return Hdf5File()
        .AnyDataSet("/image", H5T_STD_U16LE, {40, 50})
        .Strings("/Version", {text})
        .Strings("/Info", {text})
        .Build();
}

TEST(HdfTexts, OfOneLineTakeMemoryInProportion)
{
    ExpectWithinLimits(WithTexts(std::string(textBytes, '"')), "quotes");
}

// What is shown is copied as wide characters, which have 4 bytes here and 2 on Windows.
TEST(HdfTexts, ThatAreShownTakeMoreMemory)
{
    const Bytes file = WithTexts("\"format\": \"f\"\n\"version\": \"" + std::string(textBytes, 'x') + "\"\n");
    constexpr int64_t memoryPerShownByte = 9;
    const MeasuredOpen header{file, readModeHeader};
    EXPECT_EQ(header.frameCount, 1U);
    EXPECT_LE(header.memory, memoryForAnyFile + memoryPerByte * static_cast<int64_t>(file.size()) +
                                 memoryPerShownByte * static_cast<int64_t>(textBytes));
}

} // namespace
