#include "formats/hdf/Json.h"

#include <gtest/gtest.h>

#include <optional>

using Tav::Imaging::RawImage::Json;

namespace {

/// The value found for the key; nothing when none is, and the value is untouched then.
std::optional<std::string> ValueOf(const std::string& text, const std::string& key)
{
    std::string value = "untouched";
    if (Json{text}.GetString(key, value))
        return value;
    EXPECT_EQ(value, "untouched");
    return std::nullopt;
}

struct JsonRow
{
    const char* what;
    std::string text;
    std::string key;
    std::optional<std::string> value;
};

TEST(Json, FindsTextsThatHaveALineOfTheirOwn)
{
    const std::string pretty = "{\n  \"format\": \"Frames\",\n  \"version\": 0.2,\n  \"inner\": {\n"
                               "    \"applicationVersion\": \"1.2.3-beta\"\n  }\n}\n";
    const JsonRow rows[] = {
        {"a member", pretty, "format", "Frames"},
        {"a number", pretty, "version", std::nullopt},
        {"a member of an inner object", pretty, "applicationVersion", "1.2.3-beta"},
        {"an object", pretty, "inner", std::nullopt},
        {"no such key", pretty, "name", std::nullopt},
        {"a key with a capital letter in the text", "\"Format\": \"X\"", "format", "X"},
        {"a key with a capital letter in the question", "\"format\": \"X\"", "FORMAT", "X"},
        {"lines that end with a carriage return", "{\r\n\"format\": \"X\"\r\n}", "format", "X"},
        {"a key behind a brace", "{ \"format\": \"X\" }", "format", "X"},
        {"a key among others in quotes", "\"my\" \"format\" \"of\": \"X\"", "format", "X"},
        {"a part of a longer key", "\"fileformat\": \"X\"", "format", std::nullopt},
        {"a key without quotes", "format: \"X\"", "format", std::nullopt},
        {"a key that is only a value", "\"name\": \"format\"", "format", std::nullopt},
        {"two members on a line", "\"format\": \"X\", \"version\": \"Y\"", "format", std::nullopt},
        {"a value that holds a colon", "\"time\": \"12:30\"", "time", std::nullopt},
        {"a colon at the end of the line", "\"format\": \"X\" :", "format", "X"},
        {"two colons at the end of the line", "\"format\": \"X\"::", "format", std::nullopt},
        {"no value", "\"format\":", "format", std::nullopt},
        {"an empty value", "\"format\": \"\"", "format", std::nullopt},
        {"a value of one character", "\"format\": \"X\"", "format", "X"},
        {"a single quote", "\"format\": \"X", "format", std::nullopt},
        {"quotes within", "\"format\": \"a \\\"b\\\" c\"", "format", "a \\\"b\\\" c"},
        {"a list", "\"format\": [\"a\", \"b\"]", "format", "a\", \"b"},
        {"the first line that has a value", "\"format\": 1\n\"format\": \"X\"\n\"format\": \"Y\"", "format",
         "X"},
        {"no text", "", "format", std::nullopt},
        {"empty lines", "\n\n\n", "format", std::nullopt},
        {"an empty key", "\"\": \"X\"", "", "X"},
    };
    for (const JsonRow& row : rows)
        EXPECT_EQ(ValueOf(row.text, row.key), row.value) << row.what;
}

TEST(Json, TakesBytesAsTheyAre)
{
    EXPECT_EQ(ValueOf("\"format\": \"\xC3\xA4\x80\"", "format"), "\xC3\xA4\x80");
}

} // namespace
