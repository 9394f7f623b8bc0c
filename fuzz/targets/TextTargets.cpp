// The texts in files, without the files around them.

#include "Target.h"
#include "support/streams/TestStream.h"

#include "formats/RawImageNpy.h"
#include "formats/hdf/Json.h"
#include "formats/lattice/UboHeaderParser.h"

#include <algorithm>
#include <string_view>

using namespace Tav::Imaging::RawImage;

namespace {

std::string_view AsText(std::span<const uint8_t> input)
{
    return {reinterpret_cast<const char*>(input.data()), input.size()};
}

void ParseLatticeHeader(std::span<const uint8_t> input)
{
    const std::string_view text = AsText(input);
    UboHeaderParser header;
    const bool isUnderstood = header.Parse(text);
    Require(!isUnderstood || header.sampleType != PixelType::Unknown);
    // The data begin behind a line end.
    Require(header.dataOffset <= text.size());
    Require(header.dataOffset == 0 ||
            std::string_view{"\n\r"}.find(text[header.dataOffset - 1]) != std::string_view::npos);

    // Spaces at the end change nothing.
    UboHeaderParser padded;
    Require(padded.Parse(std::string{text} + std::string(16, ' ')) == isUnderstood);
    Require(padded.dataOffset == header.dataOffset && padded.parameters == header.parameters);
}

/// The dictionary of a file that has enough samples for small arrays.
void ReadNpyDictionary(std::span<const uint8_t> input)
{
    constexpr size_t dictionaryBytes = 246;
    Bytes file = {0x93, 'N', 'U', 'M', 'P', 'Y', 1, 0, dictionaryBytes, 0};
    const auto dictionary = input.first(std::min(input.size(), dictionaryBytes));
    file.insert(file.end(), dictionary.begin(), dictionary.end());
    file.resize(4096, ' ');

    TestStream stream{file};
    RawImageNpy reader;
    if (!reader.Read(&stream, file.size(), readModeHeader, 0))
        return;
    Require(reader.width >= 1 && reader.width <= 65535 && reader.height >= 1 && reader.height <= 65535);
    Require(reader.frameCount >= 1 && reader.frameCount <= 4096);
    Require(reader.pixelType != PixelType::Unknown);
}

/// The key is the input's first line.
void GetJsonString(std::span<const uint8_t> input)
{
    const std::string_view text = AsText(input);
    const size_t keyEnd = std::min(text.find('\n'), text.size());
    const std::string members{text.substr(std::min(keyEnd + 1, text.size()))};
    std::string value;
    if (!Json{members}.GetString(std::string{text.substr(0, keyEnd)}, value))
        return Require(value.empty());
    // The value stands in the text, between quotation marks and within one side of a line.
    Require(!value.empty() && members.find('"' + value + '"') != std::string::npos);
    Require(value.find_first_of(":\n") == std::string::npos);
}

} // namespace

std::vector<Target> TextTargets()
{
    return {{"lattice_header", ParseLatticeHeader},
            {"npy_dictionary", ReadNpyDictionary},
            {"json", GetJsonString}};
}
