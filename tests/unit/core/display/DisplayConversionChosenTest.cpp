#include "support/display/FrameReader.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

// Frames of samples at which the arithmetic changes its course, held against the reference.

using namespace Tav::Imaging::RawImage;

namespace {

/// A frame of one `single` sample among `copies` equal ones, each of which is written by `put`.
template <typename Value, typename Put>
StoredFrame PairFrame(PixelType type, Value copied, uint32_t copies, Value single, const Put& put)
{
    ByteWriter writer;
    put(writer, copied);
    put(writer, single);
    for (uint32_t i = 1; i < copies; ++i)
        put(writer, copied);
    return {.pixelType = type, .width = 1 + copies, .height = 1, .bytes = std::move(writer.bytes)};
}

template <typename Value, typename Put>
void ExpectReferenceDisplayOfPairs(PixelType type, const std::vector<Value>& values, const Put& put,
                                   FileType fileType = FileType::None)
{
    for (size_t i = 0; i < values.size(); ++i)
    {
        for (size_t j = 0; j <= i; ++j)
        {
            SCOPED_TRACE(testing::Message() << +values[i] << " and " << +values[j]);
            StoredFrame frame = PairFrame(type, values[i], 1, values[j], put);
            frame.fileType = fileType;
            ExpectReferenceDisplay(frame);
        }
    }
}

/// The same with each as a single sample among 99 of the other: it is kept at 0.999 and 0.99 and cut at
/// 0.98 and below.
template <typename Value>
void ExpectReferenceDisplayOfRareSamples(PixelType type, const std::vector<Value>& values)
{
    for (const Value copied : values)
    {
        for (const Value single : values)
        {
            SCOPED_TRACE(testing::Message() << +copied << " and a single " << +single);
            ExpectReferenceDisplay(PairFrame(type, copied, 99, single,
                                             [](ByteWriter& writer, Value number) { writer.Put(number); }));
        }
    }
}

const auto putNumber = [](ByteWriter& writer, auto number) { writer.Put(number); };
const auto putReal = [](ByteWriter& writer, auto number) { writer.Put(number).Put(decltype(number){}); };
const auto putImaginary = [](ByteWriter& writer, auto number) {
    writer.Put(decltype(number){1}).Put(number);
};

TEST(ChosenDisplayConversion, GivesTheReferencePictureOf16BitIntegers)
{
    const std::vector<uint16_t> codes = {0,      1,      2,      254,    255,    256,
                                         0x7FFE, 0x7FFF, 0x8000, 0x8001, 0xFFFE, 0xFFFF};
    ExpectReferenceDisplayOfPairs(PixelType::UInt16, codes, putNumber);
    ExpectReferenceDisplayOfPairs(PixelType::Int16, codes, putNumber);
    ExpectReferenceDisplayOfRareSamples(PixelType::UInt16, codes);
}

TEST(ChosenDisplayConversion, GivesTheReferencePictureOf32BitIntegers)
{
    const std::vector<uint32_t> codes = {
        0,          1,          65535,      65536,      65537,      262142,     262143,     262144,    262145,
        0x01000000, 0x7FFFFFFF, 0x80000000, 0x80000001, 0xFFFBFFFF, 0xFFFC0000, 0xFFFFFFFE, 0xFFFFFFFF};
    ExpectReferenceDisplayOfPairs(PixelType::UInt32, codes, putNumber);
    ExpectReferenceDisplayOfPairs(PixelType::Int32, codes, putNumber);
    ExpectReferenceDisplayOfRareSamples(PixelType::UInt32, codes);
}

TEST(ChosenDisplayConversion, GivesTheReferencePictureOfHalfPrecisionNumbers)
{
    const std::vector<uint16_t> codes = {0x0000, 0x8000, 0x0001, 0x8001, 0x03FF, 0x83FF,
                                         0x0400, 0x8400, 0x3C00, 0xBC00, 0x7BFF, 0xFBFF,
                                         0x7C00, 0xFC00, 0x7E01, 0xFE01, 0x7C01};
    ExpectReferenceDisplayOfPairs(PixelType::Float16, codes, putNumber);
    ExpectReferenceDisplayOfPairs(PixelType::Float16, codes, putNumber, FileType::Raw);
}

/// Numbers that both precisions have, and the corners of the precision itself.
template <typename Real>
std::vector<Real> ChosenReals()
{
    using Limits = std::numeric_limits<Real>;
    return {Real{0},
            -Real{0},
            Real{1},
            Real{-1},
            Real{0.1F},
            Limits::denorm_min(),
            -Limits::denorm_min(),
            Limits::min(),
            Limits::max(),
            Limits::lowest(),
            Limits::infinity(),
            -Limits::infinity(),
            Limits::quiet_NaN(),
            Real{65535},
            Real{65535.5F},
            Real{65536},
            Real{-65536},
            Real{4294967040.0F},
            Real{4294967296.0F},
            Real{4295032832.0F}};
}

TEST(ChosenDisplayConversion, GivesTheReferencePictureOfSinglePrecisionNumbers)
{
    ExpectReferenceDisplayOfPairs(PixelType::Float32, ChosenReals<float>(), putNumber);
    ExpectReferenceDisplayOfPairs(PixelType::Float32, ChosenReals<float>(), putNumber, FileType::Raw);
}

TEST(ChosenDisplayConversion, GivesTheReferencePictureOfDoublePrecisionNumbers)
{
    ExpectReferenceDisplayOfPairs(PixelType::Double64, ChosenReals<double>(), putNumber);
    ExpectReferenceDisplayOfPairs(PixelType::Double64, ChosenReals<double>(), putNumber, FileType::Raw);
}

TEST(ChosenDisplayConversion, GivesTheReferencePictureOfComplexNumbers)
{
    ExpectReferenceDisplayOfPairs(PixelType::Complex64, ChosenReals<float>(), putReal);
    ExpectReferenceDisplayOfPairs(PixelType::Complex128, ChosenReals<double>(), putImaginary, FileType::Raw);
}

TEST(ChosenDisplayConversion, GivesTheReferencePictureOfEveryCode)
{
    // Finite numbers alone as well: one infinite number blackens a frame.
    constexpr uint32_t finiteHalves = 0x7C00;
    for (const uint32_t count : {uint32_t{0x10000}, finiteHalves})
    {
        ByteWriter writer;
        for (uint32_t code = 0; code < count; ++code)
            writer.Put(static_cast<uint16_t>(code));
        StoredFrame frame = {.width = 256, .height = count / 256, .bytes = std::move(writer.bytes)};
        for (const PixelType type : {PixelType::UInt16, PixelType::Int16, PixelType::Float16})
        {
            frame.pixelType = type;
            ExpectReferenceDisplay(frame);
        }
    }
}

TEST(ChosenDisplayConversion, GivesTheReferencePictureOfEveryByte)
{
    // The shares of the darkest and brightest values pass 0.99 at different bytes as more of one are added.
    for (const PixelType type : {PixelType::UInt4, PixelType::UInt8, PixelType::Int8})
    {
        for (uint32_t common = 0; common < 256; common += 5)
        {
            Bytes bytes;
            for (uint32_t value = 0; value < 256; ++value)
                bytes.push_back(static_cast<uint8_t>(value));
            bytes.resize(size_t{256} * (1 + common), static_cast<uint8_t>(common));
            ExpectReferenceDisplay({.pixelType = type, .width = 256, .height = 1 + common, .bytes = bytes});
        }
    }
}

} // namespace
