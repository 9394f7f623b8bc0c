#include "lumora/batch/JsonLine.h"

#include <gtest/gtest.h>

using namespace Lumora;

namespace {

std::wstring Quoted(const std::wstring& value)
{
    JsonWriter json;
    json.BeginObject();
    json.Text(L"t", value);
    json.EndObject();
    return json.Take();
}

/// An array of two objects, the first with an array and texts.
std::wstring Written(JsonWriter::Layout layout)
{
    JsonWriter json(layout);
    json.BeginArray();
    json.BeginObject();
    json.Number(L"n", UINT64_MAX);
    json.BeginArray(L"inner");
    json.BeginObject();
    json.Truth(L"yes", true);
    json.Truth(L"no", false);
    json.EndObject();
    json.BeginObject();
    json.EndObject();
    json.EndArray();
    json.Texts(L"lines", {L"a", L"b"});
    json.EndObject();
    json.BeginObject();
    json.Null(L"nothing");
    json.BeginArray(L"empty");
    json.EndArray();
    json.Texts(L"none", {});
    json.EndObject();
    json.EndArray();
    return json.Take();
}

TEST(JsonWriter, WritesEverythingInOneLine)
{
    EXPECT_EQ(
        Written(JsonWriter::Layout::OneLine),
        LR"([{"n": 18446744073709551615, "inner": [{"yes": true, "no": false}, {}], "lines": ["a", "b"]}, )"
        LR"({"nothing": null, "empty": [], "none": []}])");
}

TEST(JsonWriter, BeginsALineForEachObjectOfAnArray)
{
    EXPECT_EQ(Written(JsonWriter::Layout::Lines), LR"([
  {"n": 18446744073709551615, "inner": [
    {"yes": true, "no": false},
    {}
  ], "lines": ["a", "b"]},
  {"nothing": null, "empty": [], "none": []}
])");
}

TEST(JsonWriter, EscapesWhatJsonDoesNotTake)
{
    EXPECT_EQ(Quoted(L"a\"b\\c/d"), LR"({"t": "a\"b\\c/d"})");
    EXPECT_EQ(Quoted(std::wstring(L"\0\t\n\x1F \x7F", 6)),
              std::wstring(LR"({"t": "\u0000\u0009\u000a\u001f )") + L"\x7F\"}");
}

TEST(JsonWriter, KeepsPairsOfSurrogatesAndEscapesLoneOnes)
{
    const std::wstring pair = {0xD83D, 0xDD2C};
    const std::wstring high = {0xD83D};
    const std::wstring low = {0xDD2C};
    EXPECT_EQ(Quoted(L"a" + pair + L"\u00FC"), L"{\"t\": \"a" + pair + L"\u00FC\"}");
    EXPECT_EQ(Quoted(high), LR"({"t": "\ud83d"})");
    EXPECT_EQ(Quoted(low + L"a"), LR"({"t": "\udd2ca"})");
    EXPECT_EQ(Quoted(low + high), LR"({"t": "\udd2c\ud83d"})");
    EXPECT_EQ(Quoted(high + pair + low), L"{\"t\": \"\\ud83d" + pair + L"\\udd2c\"}");
    EXPECT_EQ(Quoted(high + L"\""), LR"({"t": "\ud83d\""})");
    EXPECT_EQ(Quoted({0xD7FF, 0xE000}), L"{\"t\": \"\xD7FF\xE000\"}") << "the neighbours of surrogates";
}

TEST(JsonLine, TellsAllThatIsKnown)
{
    const SourceFile file = {L"in\\a.mrc", L"C:\\in\\a.mrc", L"", {}};
    FileReport report;
    report.fileSize = uint64_t{1} << 32;
    report.properties.emplace();
    (*report.properties)[MetadataProperty::Dimensions] = L"4 x 2";
    (*report.properties)[MetadataProperty::Width] = 4U;
    (*report.properties)[MetadataProperty::Height] = 2U;
    (*report.properties)[MetadataProperty::FrameCount] = 1U;
    (*report.properties)[MetadataProperty::BitDepth] = 16U;
    (*report.properties)[MetadataProperty::PixelFormat] = L"UInt16";
    (*report.properties)[MetadataProperty::Software] = L"";
    report.pictures = {{L"a-0.png", 4, 2, true}, {L"a-1.png", 8, 6, false}};
    report.lines = {L"one", L"two"};
    report.milliseconds = 12;
    report.failure = L"the disk is \"full\"";
    const std::wstring begin =
        LR"({"path": "in\\a.mrc", "fileSize": 4294967296, "dimensions": "4 x 2", "width": 4, "height": 2, )"
        LR"("frameCount": 1, "bitDepth": 16, "pixelType": "UInt16", "software": "", "formatDetails": null, )";
    const std::wstring targets =
        LR"("targets": [{"path": "a-0.png", "width": 4, "height": 2, "skipped": true}, )"
        LR"({"path": "a-1.png", "width": 8, "height": 6, "skipped": false}], )";
    const std::wstring end =
        LR"("lines": ["one", "two"], "milliseconds": 12, "error": "the disk is \"full\""})"
        L"\n";
    EXPECT_EQ(JsonLine(file, report, true), begin + targets + end);
    EXPECT_EQ(JsonLine(file, report, false), begin + end);
}

TEST(JsonLine, HasTheSameMembersIfNothingIsKnown)
{
    const SourceFile file = {L"a.mrc", L"C:\\a.mrc", L"", {}};
    EXPECT_EQ(JsonLine(file, FileReport(), true),
              LR"({"path": "a.mrc", "fileSize": null, "dimensions": null, "width": null, "height": null, )"
              LR"("frameCount": null, "bitDepth": null, "pixelType": null, "software": null, )"
              LR"("formatDetails": null, "targets": [], "lines": [], "milliseconds": 0, "error": null})"
              L"\n");
}

} // namespace
