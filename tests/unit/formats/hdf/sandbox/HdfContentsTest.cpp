#include "formats/hdf/HdfContents.h"
#include "formats/hdf/RawImageHdf.h"
#include "formats/hdf/entries/HdfPaths.h"
#include "formats/hdf/inside/HdfObject.h"
#include "support/files/Hdf5File.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/FileRead.h"
#include "support/streams/SparseStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A file that is open, with what was written on the way.
struct OpenedFile
{
    explicit OpenedFile(const Bytes& bytes) : stream(bytes), file(&stream, bytes.size())
    {
        EXPECT_TRUE(file.Open());
    }

    TestStream stream;
    HdfContents file;
};

struct Opening
{
    Opening(IStream& stream, uint64_t size)
    {
        DiagnosticLines diagnostics;
        succeeded = HdfContents{&stream, size}.Open();
        lines = diagnostics.Take();
    }

    bool succeeded;
    Lines lines;
};

TEST(HdfContents, ReadsTheWholeStreamOnce)
{
    const Bytes bytes = Hdf5File().Group("/a").Build();
    const OpenedFile opened{bytes};
    EXPECT_EQ(opened.stream.bytesRead, bytes.size());
    EXPECT_EQ(opened.stream.readCalls, 1U);
}

TEST(HdfContents, RefusesMoreThan4GiBBeforeAnythingIsRead)
{
    SparseStream stream{uint64_t{1} << 32, {}, 0, {}};
    const Opening opening{stream, uint64_t{1} << 32};
    EXPECT_FALSE(opening.succeeded);
    EXPECT_THAT(opening.lines, ElementsAre("[Lumora] HDF: File is too large (>4GB)"));
    EXPECT_EQ(stream.readCalls, 0U);
}

TEST(HdfContents, HasNoMemoryForTheLargestFile)
{
    constexpr uint64_t size = 0xFFFFFFFF;
    SparseStream stream{size, {}, 0, {}};
    const Opening opening{stream, size};
    EXPECT_FALSE(opening.succeeded);
    EXPECT_THAT(opening.lines, ElementsAre("[Lumora] HDF: Could not allocated enough memory"));
    EXPECT_EQ(stream.readCalls, 0U);
}

TEST(HdfContents, OpensNothingThatCannotBeReadOrIsNoHdf5File)
{
    TestStream cut{Bytes(99)};
    const Opening tooShort{cut, 100};
    EXPECT_FALSE(tooShort.succeeded);
    EXPECT_THAT(tooShort.lines, IsEmpty());
    TestStream zeros{Bytes(1000)};
    const Opening noFile{zeros, 1000};
    EXPECT_FALSE(noFile.succeeded);
    EXPECT_THAT(noFile.lines, IsEmpty());
}

TEST(HdfContents, ReadsTheFirstStringOnly)
{
    OpenedFile opened{Hdf5File().Strings("/texts", {"first", "second"}).Strings("/a/empty", {""}).Build()};
    EXPECT_EQ(opened.file.ReadString("texts"), "first");
    EXPECT_EQ(opened.file.ReadString("a/empty"), "");
}

TEST(HdfContents, ReadsOfAStringWhatStandsBeforeItsZeroByte)
{
    OpenedFile opened{Hdf5File()
                          .Strings("/text", {std::string(100000, 'x')})
                          .Strings("/bytes", {"\x01\x80\xFF\n"})
                          .Build()};
    EXPECT_EQ(opened.file.ReadString("text"), std::string(100000, 'x'));
    EXPECT_EQ(opened.file.ReadString("bytes"), "\x01\x80\xFF\n");
}

TEST(HdfContents, ReadsNoStringFromOtherDatasets)
{
    const HdfDataType fixedText{H5Tcopy(H5T_C_S1)};
    EXPECT_GE(H5Tset_size(fixedText.id, 8), 0);
    OpenedFile opened{Hdf5File()
                          .AnyDataSet("/number", H5T_STD_U16LE, {1})
                          .AnyDataSet("/fixed", fixedText.id, {1})
                          .Strings("/none", {})
                          .Strings("/other encoding", {"text"}, H5T_CSET_UTF8)
                          .Group("/group")
                          .Build()};
    for (const char* name : {"number", "fixed", "none", "other encoding", "group", "missing"})
        EXPECT_EQ(opened.file.ReadString(name), std::nullopt) << name;
}

/// A frame of 8 MiB is read in two bands at least.
constexpr size_t edge = 2048;
constexpr size_t frameBytes = 2 * edge * edge;

TEST(HdfContents, ReadsZerosWhereNothingIsStored)
{
    const std::vector<hsize_t> quarter = {edge / 4, edge};
    Hdf5File file;
    file.DataSet("/data", H5T_STD_U16LE, {edge, edge}, {},
                 {.chunk = quarter, .isWritten = false, .isFilled = false});
    OpenedFile opened{file.Chunk("/data", Bytes(frameBytes / 4, 7)).Build()};
    Bytes samples(frameBytes, 1);
    ASSERT_TRUE(opened.file.ReadDataset("/data", PixelType::UInt16, samples));
    Bytes expected(frameBytes);
    std::fill_n(expected.begin(), frameBytes / 4, uint8_t{7});
    EXPECT_TRUE(samples == expected);
}

TEST(HdfContents, ReadsFramesInBandsWhateverTheChunks)
{
    Bytes expected(frameBytes);
    for (size_t i = 0; i < expected.size(); ++i)
        expected[i] = static_cast<uint8_t>(i * 131 >> 7);
    const std::vector<std::vector<hsize_t>> chunks = {{},           {edge, edge}, {edge, 64},
                                                      {64, edge},   {100, 300},   {700, 16},
                                                      {1500, 1500}, {1, edge},    {1025, edge}};
    for (const std::vector<hsize_t>& chunk : chunks)
    {
        for (const bool isCompressed : {false, true})
        {
            if (isCompressed && chunk.empty())
                continue;
            OpenedFile opened{Hdf5File()
                                  .DataSet("/data", H5T_STD_U16LE, {edge, edge}, expected,
                                           {.chunk = chunk, .isCompressed = isCompressed})
                                  .Build()};
            Bytes samples(frameBytes, 1);
            EXPECT_TRUE(opened.file.ReadDataset("/data", PixelType::UInt16, samples));
            EXPECT_TRUE(samples == expected) << testing::PrintToString(chunk) << isCompressed;
        }
    }
}

TEST(HdfContents, ReadsEachPlaneInBands)
{
    // A plane is larger than a band.
    const std::vector<hsize_t> sides = {3, 2100, edge};
    Bytes expected(size_t{3} * 2100 * edge);
    for (size_t i = 0; i < expected.size(); ++i)
        expected[i] = static_cast<uint8_t>(i * 37 >> 9);
    for (const std::vector<hsize_t>& chunk : {std::vector<hsize_t>{}, {3, 100, 100}, {2, 2100, 500}})
    {
        OpenedFile opened{Hdf5File()
                              .DataSet("/data", H5T_STD_U8LE, sides, expected,
                                       {.chunk = chunk, .isCompressed = !chunk.empty()})
                              .Build()};
        Bytes samples(expected.size(), 1);
        EXPECT_TRUE(opened.file.ReadDataset("/data", PixelType::UInt8, samples));
        EXPECT_TRUE(samples == expected) << testing::PrintToString(chunk);
    }
}

TEST(HdfContents, MeetsNoOtherFile)
{
    // The library has this name for its first file in memory.
    const char* const name = "file_image_0";
    std::ofstream{name} << "no HDF5 file";
    OpenedFile opened{Hdf5File().Group("/a").Build()};
    std::ofstream{name} << "the same";
    EXPECT_EQ(std::remove(name), 0);
}

/// Bytes of addresses that the process has taken, for memory or for files.
uint64_t AddressesTaken()
{
    uint64_t bytes = 0;
#ifdef _WIN32
    MEMORY_BASIC_INFORMATION region;
    for (const uint8_t* place = nullptr; VirtualQuery(place, &region, sizeof(region)) != 0;
         place += region.RegionSize)
        bytes += region.State == MEM_FREE ? 0 : region.RegionSize;
#else
    constexpr uint64_t pageBytes = 4096;
    std::ifstream{"/proc/self/statm"} >> bytes;
    bytes *= pageBytes;
#endif
    return bytes;
}

TEST(HdfReader, LeavesNothingBehindWithAThousandFiles)
{
    const Bytes file = Hdf5File().AnyDataSet("/image", H5T_STD_U16LE, {40, 50}).Build();
    ASSERT_TRUE(FileOpen{file}.succeeded);
    const uint64_t before = AddressesTaken();
#ifdef _WIN32
    DWORD handlesBefore = 0;
    ASSERT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &handlesBefore));
#endif
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(FileOpen{file}.succeeded);
    // One sandbox takes 64 MiB; the sanitizer keeps a few hundred of memory that was given back.
    EXPECT_LT(AddressesTaken(), before + (uint64_t{1} << 30));
#ifdef _WIN32
    // Each reader keeps its handle of the mutex, and so does each read.
    DWORD handles = 0;
    ASSERT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &handles));
    EXPECT_LE(handles, handlesBefore + 2000);
#endif
}

TEST(HdfThumbnailPath, IsKnownInEveryLetterCase)
{
    for (const char* path : {"/Thumbnail.jpg", "/thumbnail.jpg", "/THUMBNAIL.JPG"})
        EXPECT_TRUE(IsThumbnailPath(path)) << path;
    for (const char* path : {"Thumbnail.jpg", "/Thumbnail.jpeg", "/Thumbnail.jp", "/a/Thumbnail.jpg", ""})
        EXPECT_FALSE(IsThumbnailPath(path)) << path;
}

TEST(HdfReader, RefusesMoreThan512MiBBeforeAnythingIsRead)
{
    for (const uint32_t mode : {readModeHeader, readModeFrame})
    {
        TestStream stream{{}};
        RawImageHdf reader{nullptr};
        DiagnosticLines diagnostics;
        EXPECT_FALSE(reader.Read(&stream, 0x20000001, mode, 0));
        EXPECT_THAT(diagnostics.Take(), ElementsAre("[Lumora] HDF: File is too large (>512MB)"));
        EXPECT_EQ(stream.readCalls, 0U);
        EXPECT_EQ(reader.fileType, FileType::Hdf);
        EXPECT_EQ(reader.readMode, mode);
    }
}

} // namespace
