#include "support/files/Hdf5File.h"
#include "support/streams/FileRead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

using namespace Tav::Imaging::RawImage;
using testing::IsEmpty;

namespace {

using Text = std::optional<std::string>;

struct TextRow
{
    const char* what;
    /// The datasets' texts; none where there is no such dataset.
    Text version;
    Text info;
    std::wstring formatDetails;
    std::wstring software;
};

const char* const version = "{\n\"format\": \"Frame\",\n\"version\": \"1.1\"\n}";

const TextRow rows[] = {
    {"neither", {}, {}, L"", L""},
    {"version alone", version, {}, L"Data version: Frame 1.1", L""},
    {"both", version, "{\n \"applicationVersion\": \"1.2.3\"\n}", L"Data version: Frame 1.1", L"Frame 1.2.3"},
    {"carriage returns", "{\r\n\"Format\": \"Frame\",\r\n\"Version\": \"1.1\"\r\n}\r\n",
     "{\r\n\"ApplicationVersion\": \"1.2.3\"\r\n}", L"Data version: Frame 1.1", L"Frame 1.2.3"},
    {"what follows a dash", version, "\"applicationVersion\": \"1.2.3-beta-4\"", L"Data version: Frame 1.1",
     L"Frame 1.2.3"},
    {"a dash at the beginning", version, "\"applicationVersion\": \"-1.2-beta\"", L"Data version: Frame 1.1",
     L"Frame -1.2-beta"},
    {"a dash alone", version, "\"applicationVersion\": \"-\"", L"Data version: Frame 1.1", L"Frame -"},
    {"an empty application version", version, "\"applicationVersion\": \"\"", L"Data version: Frame 1.1",
     L""},
    {"information without the version", version, "{}", L"Data version: Frame 1.1", L""},
    {"application version without a data version", {}, "\"applicationVersion\": \"1.2.3\"", L"", L""},
    {"version without format", "\"version\": \"1.1\"", "\"applicationVersion\": \"1.2.3\"", L"", L""},
    // The format is only looked for once the version is known.
    {"format without version", "\"format\": \"Frame\"", "\"applicationVersion\": \"1.2.3\"", L"", L""},
    {"a number for a version", "\"format\": \"Frame\",\n\"version\": 1.1",
     "\"applicationVersion\": \"1.2.3\"", L"", L""},
    {"all in one line", "{\"format\": \"Frame\", \"version\": \"1.1\"}", {}, L"", L""},
    {"no JSON", "1.1", "1.2.3", L"", L""},
    {"empty", "", "", L"", L""},
    {"bytes beyond ASCII", "\"format\": \"Fr\xE4me\",\n\"version\": \"\x80\xFF\"",
     "\"applicationVersion\": \"\xB5\"", L"Data version: Fr\xFFE4me \xFF80\xFFFF", L"Fr\xFFE4me \xFFB5"},
};

TEST(HdfReader, TellsTheVersionsOfTheDataAndOfTheProgram)
{
    for (const TextRow& row : rows)
    {
        SCOPED_TRACE(row.what);
        Hdf5File file;
        file.AnyDataSet("/image", H5T_STD_U16LE, {40, 50});
        if (row.version)
            file.Strings("/Version", {*row.version});
        if (row.info)
            file.Strings("/Info", {*row.info});
        const FileOpen open{file.Build(), readModeHeader};
        ASSERT_TRUE(open.succeeded);
        EXPECT_THAT(open.lines, IsEmpty());
        EXPECT_EQ(open.image.Reader()->formatDetails, row.formatDetails);
        EXPECT_EQ(open.image.Reader()->software, row.software);
    }
}

TEST(HdfReader, TakesTheFirstOfSeveralTexts)
{
    const FileOpen open{Hdf5File()
                            .AnyDataSet("/image", H5T_STD_U16LE, {40, 50})
                            .Strings("/Version", {version, "\"format\": \"Other\",\n\"version\": \"9\""})
                            .Strings("/Info", {"{}", "\"applicationVersion\": \"1.2.3\""})
                            .Build(),
                        readModeHeader};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->formatDetails, L"Data version: Frame 1.1");
    EXPECT_EQ(open.image.Reader()->software, L"");
}

TEST(HdfReader, ReadsTextsWhateverFollowsThemInTheFile)
{
    const FileOpen open{Hdf5File()
                            .Strings("/Version", {version})
                            .DataSet("/image", H5T_STD_U16LE, {512, 512}, Bytes(512 * 512 * 2))
                            .Build(),
                        readModeHeader};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->formatDetails, L"Data version: Frame 1.1");
}

TEST(HdfReader, TakesTextsFromTheRootGroupOnly)
{
    const FileOpen open{Hdf5File()
                            .AnyDataSet("/image", H5T_STD_U16LE, {40, 50})
                            .Strings("/Data/Version", {version})
                            .Strings("/version", {version})
                            .Build(),
                        readModeHeader};
    ASSERT_TRUE(open.succeeded);
    EXPECT_EQ(open.image.Reader()->formatDetails, L"");
}

} // namespace
