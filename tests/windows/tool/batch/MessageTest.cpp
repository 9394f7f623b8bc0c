#include "lumora/batch/Message.h"

#include "lumora/batch/FileReport.h"
#include "lumora/batch/FileTask.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Lumora;
using testing::ElementsAre;

namespace {

using Bytes = std::vector<uint8_t>;

FileTask FullTask()
{
    FileTask task;
    task.path = L"C:\\data\\\u00FC\u7535.mrc";
    task.wantsProperties = true;
    task.thumbnailSide = 200;
    task.pictures.emplace();
    task.pictures->target = L"out\\\u00FC";
    task.pictures->frames = *FrameSelection::Parse(L"3-9/2,20");
    task.pictures->format = {true, 55};
    task.pictures->longerSide = 512;
    task.pictures->isMontage = true;
    task.pictures->columns = 7;
    task.pictures->skipsExisting = true;
    return task;
}

FileReport FullReport()
{
    FileReport report;
    report.properties.emplace();
    (*report.properties)[MetadataProperty::Width] = 4096U;
    (*report.properties)[MetadataProperty::Software] = L"Scope\u00B5";
    report.thumbnail = PixelBlock{2, 1, {1, 2, 3, 250, 251, 252}};
    report.pictures = {{L"a-0.png", 4, 2, true}, {L"a-1.png", 40, 20, false}};
    report.lines = {L"first", L"", L"last"};
    report.failure = L"no more";
    report.fileSize = uint64_t{5} << 32 | 6;
    report.milliseconds = 1234;
    return report;
}

template <class Type>
Bytes BytesOf(Type value)
{
    MessageWriter writer;
    writer.Field(value);
    return writer.Take();
}

template <class Type>
Type Read(const Bytes& bytes)
{
    Type value;
    MessageReader(bytes).Field(value);
    return value;
}

template <class Type>
void ExpectThatEachByteIsNeeded(const Type& value)
{
    const Bytes bytes = BytesOf(value);
    for (size_t size = 0; size < bytes.size(); ++size)
    {
        const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_THROW(static_cast<void>(Read<Type>(cut)), Failure) << size << " of " << bytes.size();
    }
}

TEST(Message, CarriesATask)
{
    const FileTask task = Read<FileTask>(BytesOf(FullTask()));
    EXPECT_EQ(task.path, L"C:\\data\\\u00FC\u7535.mrc");
    EXPECT_TRUE(task.wantsProperties);
    EXPECT_EQ(task.thumbnailSide, 200U);
    ASSERT_TRUE(task.pictures);
    EXPECT_EQ(task.pictures->target, L"out\\\u00FC");
    EXPECT_EQ(task.pictures->frames.Next(4, 100), 5U);
    EXPECT_EQ(task.pictures->frames.Next(10, 100), 20U);
    EXPECT_EQ(task.pictures->frames.Next(21, 100), std::nullopt);
    EXPECT_TRUE(task.pictures->format.isJpeg);
    EXPECT_EQ(task.pictures->format.quality, 55U);
    EXPECT_EQ(task.pictures->longerSide, 512U);
    EXPECT_TRUE(task.pictures->isMontage);
    EXPECT_EQ(task.pictures->columns, 7U);
    EXPECT_TRUE(task.pictures->skipsExisting);
}

TEST(Message, CarriesAReport)
{
    const FileReport report = Read<FileReport>(BytesOf(FullReport()));
    ASSERT_TRUE(report.properties);
    EXPECT_EQ((*report.properties)[MetadataProperty::Width], PropertyValue(4096U));
    EXPECT_EQ((*report.properties)[MetadataProperty::Software], PropertyValue(L"Scope\u00B5"));
    EXPECT_EQ((*report.properties)[MetadataProperty::Height], PropertyValue());
    ASSERT_TRUE(report.thumbnail);
    EXPECT_EQ(report.thumbnail->width, 2U);
    EXPECT_EQ(report.thumbnail->height, 1U);
    EXPECT_THAT(report.thumbnail->pixels, ElementsAre(1, 2, 3, 250, 251, 252));
    ASSERT_EQ(report.pictures.size(), 2U);
    EXPECT_EQ(report.pictures[0].name, L"a-0.png");
    EXPECT_TRUE(report.pictures[0].isSkipped);
    EXPECT_EQ(report.pictures[1].name, L"a-1.png");
    EXPECT_EQ(report.pictures[1].width, 40U);
    EXPECT_EQ(report.pictures[1].height, 20U);
    EXPECT_FALSE(report.pictures[1].isSkipped);
    EXPECT_THAT(report.lines, ElementsAre(L"first", L"", L"last"));
    EXPECT_EQ(report.failure, L"no more");
    EXPECT_EQ(report.fileSize, 21'474'836'486U);
    EXPECT_EQ(report.milliseconds, 1234U);
}

TEST(Message, CarriesWhatIsNotThere)
{
    const FileTask task = Read<FileTask>(BytesOf(FileTask()));
    EXPECT_EQ(task.path, L"");
    EXPECT_FALSE(task.wantsProperties);
    EXPECT_FALSE(task.thumbnailSide);
    EXPECT_FALSE(task.pictures);
    const FileReport report = Read<FileReport>(BytesOf(FileReport()));
    EXPECT_FALSE(report.properties);
    EXPECT_FALSE(report.thumbnail);
    EXPECT_TRUE(report.pictures.empty());
    EXPECT_TRUE(report.lines.empty());
    EXPECT_FALSE(report.failure);
    EXPECT_FALSE(report.fileSize);
}

TEST(Message, IsRefusedIfAnyByteIsMissing)
{
    ExpectThatEachByteIsNeeded(FullTask());
    ExpectThatEachByteIsNeeded(FullReport());
    ExpectThatEachByteIsNeeded(FileTask());
    ExpectThatEachByteIsNeeded(FileReport());
}

TEST(Message, IsRefusedIfACountIsLargerThanIt)
{
    // Twice 2^63 bytes are none in 64 bits.
    for (const uint64_t count : {uint64_t{5}, uint64_t{1} << 32, uint64_t{1} << 63, UINT64_MAX})
    {
        Bytes message = BytesOf(count);
        message.resize(message.size() + 4);
        EXPECT_THROW(static_cast<void>(Read<std::wstring>(message)), Failure) << count;
        EXPECT_THROW(static_cast<void>(Read<Bytes>(message)), Failure) << count;
        EXPECT_THROW(static_cast<void>(Read<std::vector<PictureReport>>(message)), Failure) << count;
    }
    Bytes text = BytesOf(uint64_t{3});
    text.resize(text.size() + 5);
    EXPECT_THROW(static_cast<void>(Read<std::wstring>(text)), Failure) << "half a character is missing";
}

} // namespace
