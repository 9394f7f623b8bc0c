#include "formats/HdfAccess.h"
#include "formats/HdfDiscovery.h"
#include "formats/HdfLibrary.h"
#include "formats/HdfObject.h"
#include "formats/RawImageHdf.h"
#include "support/DiagnosticLines.h"
#include "support/FileRead.h"
#include "support/Hdf5File.h"
#include "support/SparseStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<uint8_t>;

namespace {

/// A file that is open, with what was written on the way.
struct OpenedFile
{
    explicit OpenedFile(const Bytes& bytes)
        : stream(bytes), file(OpenHdfFileImage(&stream, bytes.size(), image))
    {
        EXPECT_TRUE(file.IsOpen());
    }

    TestStream stream;
    Bytes image;
    HdfLibrary library;
    HdfFile file;
};

struct Opening
{
    Opening(IStream& stream, uint64_t size)
    {
        DiagnosticLines diagnostics;
        Bytes image;
        const HdfLibrary library;
        identifier = HdfFile{OpenHdfFileImage(&stream, size, image)}.id;
        lines = diagnostics.Take();
    }

    hid_t identifier;
    std::vector<std::string> lines;
};

TEST(HdfAccess, ReadsTheWholeStreamAndLeavesItAsItIs)
{
    const Bytes bytes = Hdf5File().Group("/a").Build();
    const OpenedFile opened{bytes};
    EXPECT_EQ(opened.image, bytes);
    EXPECT_EQ(opened.stream.bytesRead, bytes.size());
    unsigned intent = ~0U;
    EXPECT_GE(H5Fget_intent(opened.file.id, &intent), 0);
    EXPECT_EQ(intent, 0U) << "read-only";
}

TEST(HdfAccess, RefusesMoreThan4GiBBeforeAnythingIsRead)
{
    SparseStream stream{uint64_t{1} << 32, {}, 0, {}};
    const Opening opening{stream, uint64_t{1} << 32};
    EXPECT_EQ(opening.identifier, -1);
    EXPECT_THAT(opening.lines, ElementsAre("[Lumora] HDF: File is too large (>4GB)"));
    EXPECT_EQ(stream.readCalls, 0U);
}

TEST(HdfAccess, OpensNothingThatCannotBeReadOrIsNoHdf5File)
{
    TestStream cut{Bytes(99)};
    const Opening tooShort{cut, 100};
    EXPECT_EQ(tooShort.identifier, -1);
    EXPECT_THAT(tooShort.lines, IsEmpty());
    TestStream zeros{Bytes(1000)};
    const Opening noFile{zeros, 1000};
    EXPECT_LT(noFile.identifier, 0);
    EXPECT_THAT(noFile.lines, IsEmpty());
}

TEST(HdfAccess, ReadsTheFirstStringOnly)
{
    const OpenedFile opened{
        Hdf5File().Strings("/texts", {"first", "second"}).Strings("/a/empty", {""}).Build()};
    std::string value = "untouched";
    EXPECT_TRUE(ReadHdfStringDataset(opened.file.id, "texts", value));
    EXPECT_EQ(value, "first");
    EXPECT_TRUE(ReadHdfStringDataset(opened.file.id, "a/empty", value));
    EXPECT_EQ(value, "");
}

TEST(HdfAccess, ReadsOfAStringWhatStandsBeforeItsZeroByte)
{
    const OpenedFile opened{Hdf5File()
                                .Strings("/text", {std::string(100000, 'x')})
                                .Strings("/bytes", {"\x01\x80\xFF\n"})
                                .Build()};
    std::string value;
    EXPECT_TRUE(ReadHdfStringDataset(opened.file.id, "text", value));
    EXPECT_EQ(value, std::string(100000, 'x'));
    EXPECT_TRUE(ReadHdfStringDataset(opened.file.id, "bytes", value));
    EXPECT_EQ(value, "\x01\x80\xFF\n");
}

/// Its datatype is closed before the library ends, which reading does.
Bytes FileOfOtherDatasets()
{
    const HdfDataType fixedText{H5Tcopy(H5T_C_S1)};
    EXPECT_GE(H5Tset_size(fixedText.id, 8), 0);
    return Hdf5File()
        .AnyDataSet("/number", H5T_STD_U16LE, {1})
        .AnyDataSet("/fixed", fixedText.id, {1})
        .Strings("/none", {})
        .Strings("/other encoding", {"text"}, H5T_CSET_UTF8)
        .Group("/group")
        .Build();
}

TEST(HdfAccess, ReadsNoStringFromOtherDatasets)
{
    const OpenedFile opened{FileOfOtherDatasets()};
    for (const char* name : {"number", "fixed", "none", "other encoding", "group", "missing"})
    {
        std::string value = "untouched";
        EXPECT_FALSE(ReadHdfStringDataset(opened.file.id, name, value)) << name;
        EXPECT_EQ(value, "untouched") << name;
    }
}

TEST(HdfAccess, GivesBackEveryIdentifier)
{
    Hdf5File file;
    file.AnyDataSet("/Image/Data", H5T_STD_U16LE, {40, 50, 3}).Text("/Image/Data", "CLASS", "IMAGE");
    file.Strings("/Version", {"\"version\": \"1\",\n\"format\": \"F\""}).Strings("/Info", {"text"});
    file.AnyDataSet("/image b", H5T_STD_U8LE, {40, 50}).Palettes("/image b", 1);
    file.AnyDataSet("/image c", H5T_STD_I64LE, {40, 50}).AnyDataSet("/Thumbnail.jpg", H5T_STD_U8LE, {9});
    const OpenedFile opened{file.Build()};
    HdfDiscovery discovery;
    discovery.Walk(opened.file.id);
    const std::vector<HdfImageEntry> entries = discovery.found.Entries(false);
    ASSERT_EQ(entries.size(), 3U) << "the frames of the series";
    Bytes samples(40 * 50 * 2);
    EXPECT_TRUE(ReadHdfSeriesFrame(opened.file.id, entries[0], samples.data()));
    std::string text;
    EXPECT_TRUE(ReadHdfStringDataset(opened.file.id, "Version", text));
    EXPECT_EQ(H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_ALL), 1) << "the file itself";
}

TEST(HdfAccess, KnowsTheThumbnailInEveryLetterCase)
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
