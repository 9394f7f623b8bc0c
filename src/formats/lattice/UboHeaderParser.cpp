#include "formats/lattice/UboHeaderParser.h"

#include "core/stream/StreamReader.h"
#include "core/stream/Text.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <span>

namespace Tav::Imaging::RawImage {

namespace {

struct TypeWord
{
    std::string_view word;
    PixelType pixelType;
};

// If a word contains another, the longer one comes first.
constexpr TypeWord typeWords[] = {
    {"byte", PixelType::UInt8}, {"ushort", PixelType::UInt16}, {"short", PixelType::Int16},
    {"int", PixelType::Int32},  {"float", PixelType::Float32}, {"double", PixelType::Double64},
};

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

bool IsWhiteSpace(char character) noexcept
{
    return whiteSpace.find(character) != std::string_view::npos;
}

std::string_view Trim(std::string_view text) noexcept
{
    const size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

bool EqualsIgnoringCase(std::string_view text, const std::string& word)
{
    return text.size() == word.size() && ToLower(std::string{text}) == ToLower(word);
}

bool Contains(std::string_view text, std::string_view word) noexcept
{
    return text.find(word) != std::string_view::npos;
}

std::optional<PixelType> TypeNamedIn(std::string_view line) noexcept
{
    for (const TypeWord& type : typeWords)
    {
        if (Contains(line, type.word))
            return type.pixelType;
    }
    return std::nullopt;
}

/// Whether the data reference of a type line, "@1(HxZip,12345)", names a compression and a byte count.
bool NamesCompression(std::string_view line)
{
    const size_t reference = line.find("@1");
    if (reference == std::string_view::npos)
        return false;
    const std::string_view after = line.substr(reference + 2);
    const size_t open = after.find('(');
    const size_t close = after.find(')', std::min(open, after.size()));
    if (open == std::string_view::npos || close == std::string_view::npos)
        return false;
    const auto items = SplitString(std::string{after.substr(open + 1, close - open - 1)}, ',');
    return items.size() == 2 &&
           (EqualsIgnoringCase(items[0], "HxByteRLE") || EqualsIgnoringCase(items[0], "HxZip"));
}

std::optional<uint32_t> ToUInt32(std::string_view text) noexcept
{
    uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || stopped != end)
        return std::nullopt;
    return number;
}

} // namespace

bool UboHeaderParser::Parse(std::string_view text)
{
    *this = {};
    Scan(text);
    return FindSampleType() && FindDimensions();
}

void UboHeaderParser::Scan(std::string_view text)
{
    // The current line without the white space around it. Every character updates it, because a line can be
    // as long as the header and hold as many braces.
    std::string_view line;
    for (size_t i = 0; i < text.size(); ++i)
    {
        const char character = text[i];
        if (character == '\n' || character == '\r')
        {
            if (!line.empty() && TakeLine(line))
            {
                dataOffset = static_cast<uint32_t>(i + 1);
                return;
            }
            line = {};
            continue;
        }
        if (character == '{')
            OpenSection(line);
        else if (character == '}')
            CloseSection();
        if (!IsWhiteSpace(character))
        {
            const size_t begin = line.empty() ? i : static_cast<size_t>(line.data() - text.data());
            line = text.substr(begin, i + 1 - begin);
        }
    }
}

void UboHeaderParser::OpenSection(std::string_view line)
{
    if (!hasSectionMarks)
        return;
    isInParameters = isInParameters || EqualsIgnoringCase(line, "Parameters");
    ++openSections;
}

void UboHeaderParser::CloseSection()
{
    if (!hasSectionMarks || openSections == 0)
        return;
    --openSections;
    if (openSections == 0)
    {
        isInParameters = false;
        hasSectionMarks = false;
    }
}

bool UboHeaderParser::TakeLine(std::string_view line)
{
    if (isInParameters && TakeParameter(line))
        return false;
    headerLines.emplace_back(line);
    if (isDataAnnounced)
        return line == "@1";
    isDataAnnounced = EqualsIgnoringCase(line, "# data section follows");
    return false;
}

bool UboHeaderParser::TakeParameter(std::string_view line)
{
    const size_t space = line.find(' ');
    if (space == std::string_view::npos)
        return false;
    const std::string_view name = Trim(line.substr(0, space));
    std::string_view value = Trim(line.substr(space + 1));
    if (value.ends_with(','))
        value = Trim(value.substr(0, value.size() - 1));
    if (value.size() >= 2 && value.starts_with('"') && value.ends_with('"'))
        value = value.substr(1, value.size() - 2);
    parameters.insert_or_assign(std::string{name}, std::string{value});
    return true;
}

bool UboHeaderParser::FindSampleType()
{
    for (const std::string& line : headerLines)
    {
        if (!line.starts_with("Lattice"))
            continue;
        if (const auto type = TypeNamedIn(line))
        {
            sampleType = *type;
            isCompressed = NamesCompression(line);
            return true;
        }
    }
    return false;
}

bool UboHeaderParser::FindDimensions()
{
    constexpr std::string_view keyword = "define Lattice ";
    const auto line = std::find_if(headerLines.begin(), headerLines.end(),
                                   [keyword](const std::string& text) { return text.starts_with(keyword); });
    if (line == headerLines.end())
        return false;
    const auto items = SplitString(line->substr(keyword.size()), ' ');
    if (items.size() != 3)
        return false;
    const auto x = ToUInt32(items[0]);
    const auto y = ToUInt32(items[1]);
    const auto z = ToUInt32(items[2]);
    if (!x || !y || !z)
        return false;
    dimensionX = *x;
    dimensionY = *y;
    dimensionZ = *z;
    return true;
}

} // namespace Tav::Imaging::RawImage
