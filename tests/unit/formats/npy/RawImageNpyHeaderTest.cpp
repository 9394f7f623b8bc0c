#include "formats/RawImageNpy.h"
#include "support/FileFacts.h"
#include "support/files/NpyFile.h"
#include "support/streams/ReaderExpectations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using NpyRead = FileRead<RawImageNpy>;

namespace {

const std::string invalidHeader = "[Lumora] NPY: Invalid header";
const std::string unsupportedVersion = "[Lumora] NPY: Unsupported version";
const std::string unsupportedPixelType = "[Lumora] NPY: Unsupported pixel type";
const std::string unsupportedStructure = "[Lumora] NPY: Unsupported data structure";
const std::string invalidResolution = "[Lumora] NPY: Invalid resolution";
const std::string tooManyFrames = "[Lumora] NPY: The number of frames is too large";
const std::string noSuchFrame = "[Lumora] NPY: Frame index is out of range";

TEST(NpyReader, RefusesAFileWithoutTheMagicText)
{
    for (size_t place = 0; place < 6; ++place)
    {
        Bytes file = NpyFile().Samples({1}).Build();
        file[place] ^= 0x20;
        ExpectRefusal<RawImageNpy>(file, {invalidHeader}, place, HasFacts({.fileType = FileType::Npy}));
    }
}

TEST(NpyReader, ReadsVersion1Point0Only)
{
    constexpr uint8_t versions[][2] = {{0, 0}, {0, 1}, {1, 1}, {1, 255}, {2, 0}, {3, 0}, {255, 0}};
    for (const auto& [major, minor] : versions)
        ExpectRefusal<RawImageNpy>(NpyFile().Version(major, minor).Samples({1}).Build(), {unsupportedVersion},
                                   testing::Message() << int{major} << '.' << int{minor});
    EXPECT_TRUE(NpyRead(NpyFile().Version(1, 0).Samples({1}).Build()).succeeded);
}

TEST(NpyReader, ChecksTheMagicTextBeforeTheVersionAndTheVersionBeforeTheDictionary)
{
    EXPECT_THAT(NpyRead(NpyFile().Magic("\x93NUMPy").Version(2, 0).Samples({1}).Build()).lines,
                ElementsAre(invalidHeader));
    EXPECT_THAT(NpyRead(NpyFile().Version(2, 0).Descr("<f2").Samples({1}).Build()).lines,
                ElementsAre(unsupportedVersion));
}

struct TypeRow
{
    const char* descr;
    PixelType pixelType;
};

TEST(NpyReader, TakesTheElementTypeByTheFirstKnownCodeInItsName)
{
    constexpr TypeRow rows[] = {
        {"|u1", PixelType::UInt8},
        {"<u2", PixelType::UInt16},
        {"<u4", PixelType::UInt32},
        {"|i1", PixelType::Int8},
        {"<i2", PixelType::Int16},
        {"<i4", PixelType::Int32},
        {"<f4", PixelType::Float32},
        {"<f8", PixelType::Double64},
        {"<c8", PixelType::Complex64},
        {"<c16", PixelType::Complex128},
        // The byte order is not looked at, nor is anything else around the code.
        {">u2", PixelType::UInt16},
        {"=f4", PixelType::Float32},
        {">c16", PixelType::Complex128},
        {"u1", PixelType::UInt8},
        {" i4 ", PixelType::Int32},
        {"some u4 numbers", PixelType::UInt32},
        // Longer codes that a shorter one is part of.
        {"<u16", PixelType::UInt8},
        {"<i16", PixelType::Int8},
        {"<f48", PixelType::Float32},
        {"<c80", PixelType::Complex64},
        // The order of the codes counts, not their place in the name.
        {"u2u1", PixelType::UInt8},
        {"u4u2", PixelType::UInt16},
        {"i1u4", PixelType::UInt32},
        {"i2i1", PixelType::Int8},
        {"i4i2", PixelType::Int16},
        {"f4i4", PixelType::Int32},
        {"f8f4", PixelType::Float32},
        {"c8f8", PixelType::Double64},
        {"c16c8", PixelType::Complex64},
    };
    for (const TypeRow& row : rows)
    {
        const NpyRead read{NpyFile().Descr(row.descr).Samples(Bytes(16)).Build(), 0};
        EXPECT_TRUE(read.succeeded) << row.descr;
        EXPECT_EQ(read.reader.pixelType, row.pixelType) << row.descr;
        EXPECT_EQ(read.reader.byteOrder, ByteOrder::LittleEndian) << row.descr;
        EXPECT_THAT(read.lines, IsEmpty()) << row.descr;
    }
}

TEST(NpyReader, RefusesEveryOtherElementType)
{
    for (const char* descr :
         {"<f2", "<u8", "<i8", "|b1", "<f16", "<c32", "|S10", "<U10", "<M8[us]", "<m8[ns]", "|V4", "|O",
          "",    "<",   "u",   "1",   "c1",   "c 8",  "U2",   "I4",   "F8",      "C16",     "8f"})
        ExpectRefusal<RawImageNpy>(NpyFile().Descr(descr).Samples(Bytes(16)).Build(), {unsupportedPixelType},
                                   descr);
}

struct ShapeRow
{
    const char* shape;
    const char* descr;
    PixelType pixelType;
    uint32_t width;
    uint32_t height;
    uint32_t frameCount;
};

TEST(NpyReader, TellsFramesFromRowsByTheShape)
{
    const ShapeRow rows[] = {
        {"(512, 500)", "<u2", PixelType::UInt16, 500, 512, 1},
        {"(1, 65535)", "|u1", PixelType::UInt8, 65535, 1, 1},
        {"(65535, 1)", "|u1", PixelType::UInt8, 1, 65535, 1},
        // Two numbers are never colours.
        {"(5, 3)", "|u1", PixelType::UInt8, 3, 5, 1},
        // Three bytes for each place are a colour, whatever the other two numbers are.
        {"(5, 4, 3)", "|u1", PixelType::RGB24, 4, 5, 1},
        {"(4, 4, 3)", "|u1", PixelType::RGB24, 4, 4, 1},
        {"(3, 3, 3)", "|u1", PixelType::RGB24, 3, 3, 1},
        {"(3, 4, 3)", "|u1", PixelType::RGB24, 4, 3, 1},
        {"(256, 256, 3)", "|u1", PixelType::RGB24, 256, 256, 1},
        // Not with samples of any other type.
        {"(256, 256, 3)", "<u2", PixelType::UInt16, 256, 256, 3},
        {"(256, 256, 3)", "|i1", PixelType::Int8, 256, 256, 3},
        {"(5, 4, 3)", "|i1", PixelType::Int8, 3, 4, 5},
        {"(3, 3, 3)", "<f4", PixelType::Float32, 3, 3, 3},
        // Frames come first, unless the first two numbers are the same and the third is not.
        {"(10, 256, 200)", "|u1", PixelType::UInt8, 200, 256, 10},
        {"(100, 200, 5)", "|u1", PixelType::UInt8, 5, 200, 100},
        {"(4, 4, 4)", "|u1", PixelType::UInt8, 4, 4, 4},
        {"(4, 5, 4)", "|u1", PixelType::UInt8, 4, 5, 4},
        {"(4, 5, 5)", "|u1", PixelType::UInt8, 5, 5, 4},
        {"(4, 4, 5)", "|u1", PixelType::UInt8, 4, 4, 5},
        {"(4, 4, 1)", "|u1", PixelType::UInt8, 4, 4, 1},
        {"(1, 4, 4)", "|u1", PixelType::UInt8, 4, 4, 1},
        {"(1, 1, 4096)", "|u1", PixelType::UInt8, 1, 1, 4096},
        {"(4096, 2, 1)", "|u1", PixelType::UInt8, 1, 2, 4096},
    };
    for (const ShapeRow& row : rows)
    {
        const NpyRead read{NpyFile().Descr(row.descr).Shape(row.shape).Samples(Bytes(600000)).Build(), 0};
        EXPECT_TRUE(read.succeeded) << row.shape;
        EXPECT_THAT(read.reader,
                    HasFacts({FileType::Npy, row.pixelType, row.width, row.height, row.frameCount}))
            << row.shape;
        EXPECT_THAT(read.lines, IsEmpty()) << row.shape;
    }
}

struct RefusedShapeRow
{
    const char* shape;
    std::string line;
};

TEST(NpyReader, SaysWhatKeepsAShapeFromBeingShown)
{
    const RefusedShapeRow rows[] = {
        // One dimension, none, or more than three.
        {"(5,)", unsupportedStructure},
        {"(5)", unsupportedStructure},
        {"()", unsupportedStructure},
        {"( )", unsupportedStructure},
        {"(2, 2, 2, 2)", unsupportedStructure},
        {"(2, 2, 2, 2, 2)", unsupportedStructure},
        // As many commas as an element too many needs, or too few.
        {"(4, 4,)", unsupportedStructure},
        {"(,4, 4)", unsupportedStructure},
        {"(4,, 4)", unsupportedStructure},
        {"(4 4)", unsupportedStructure},
        {"(4 4, 4)", unsupportedStructure},
        {"(,)", unsupportedStructure},
        {"(,,)", unsupportedStructure},
        // The suffix of a long integer is a gap between numbers.
        {"(L, 4)", unsupportedStructure},
        {"(4L4, 4)", unsupportedStructure},
        // Sizes.
        {"(70000, 10)", invalidResolution},
        {"(10, 70000)", invalidResolution},
        {"(65536, 1)", invalidResolution},
        {"(1, 65536)", invalidResolution},
        {"(0, 1)", invalidResolution},
        {"(1, 0)", invalidResolution},
        {"(0, 4, 3)", invalidResolution},
        {"(4, 0, 3)", invalidResolution},
        {"(2, 0, 4)", invalidResolution},
        {"(2, 65536, 4)", invalidResolution},
        {"(2, 4, 0)", invalidResolution},
        {"(2, 4, 65536)", invalidResolution},
        {"(0, 0, 5)", invalidResolution},
        {"(65536, 65536, 5)", invalidResolution},
        // Frames.
        {"(4097, 2, 1)", tooManyFrames},
        {"(5000, 64, 64)", tooManyFrames},
        {"(1, 1, 4097)", tooManyFrames},
        // The size comes first.
        {"(5000, 0, 64)", invalidResolution},
        // A stack of nothing has a size, but no frame.
        {"(0, 64, 64)", noSuchFrame},
        {"(64, 64, 0)", noSuchFrame},
    };
    for (const RefusedShapeRow& row : rows)
        ExpectRefusal<RawImageNpy>(NpyFile().Shape(row.shape).Samples(Bytes(70000)).Build(), {row.line},
                                   row.shape);
}

TEST(NpyReader, FillsInTheFactsOfAStackOfNothing)
{
    const NpyRead read{NpyFile().Shape("(0, 64, 48)").Samples(Bytes(70000)).Build(), 0};
    EXPECT_THAT(read.reader, HasFacts({FileType::Npy, PixelType::UInt8, 48, 64, 0}));
}

TEST(NpyReader, KeepsWhatItHasFoundBeforeARefusal)
{
    const NpyRead colours{NpyFile().Descr("|u1").Shape("(0, 4, 3)").Samples(Bytes(64)).Build(), 0};
    EXPECT_THAT(colours.reader, HasFacts({FileType::Npy, PixelType::RGB24, 4, 0, 1}));

    const NpyRead line{NpyFile().Descr("<i4").Shape("(5,)").Samples(Bytes(64)).Build(), 0};
    EXPECT_THAT(line.reader, HasFacts({FileType::Npy, PixelType::Int32}));
}

} // namespace
