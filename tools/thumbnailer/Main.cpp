#include "core/RawImage.h"
#include "core/display/DisplayPicture.h"
#include "platform/Platform.h"
#include "shared/AreaScaler.h"
#include "shared/linux/DisplayedPicture.h"
#include "shared/linux/FileStream.h"
#include "thumbnailer/PngFile.h"
#include "thumbnailer/Uri.h"

#include <charconv>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace Lumora;
using namespace Tav::Imaging::RawImage;

const std::string nameAndVersion = std::string("lumora-thumbnailer ") + LUMORA_VERSION;

constexpr const char* help = R"(Write a small PNG picture of an electron-microscopy file, for file managers.

Usage: lumora-thumbnailer [-s SIZE] INPUT OUTPUT

INPUT is the path or the file: URI of an MRC, Digital Micrograph, SER, EMI, HDF5,
NPY, RAW, BIN or lattice file; its content counts, not its name. OUTPUT is the
path of the picture. An earlier file of that name is replaced.

The exit code is 0 when there is a picture. Otherwise it is 1 (2 for a usage
error), standard error says in one line why, and OUTPUT is as it was.

Options:
  -s SIZE    scale down so that the longer side has this many pixels; smaller
             pictures stay as they are. Default: 256
  --version  the version of this program
  --help     this text
)";

struct UsageError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

struct Arguments
{
    uint32_t size = 256;
    std::string input;
    std::string output;
};

uint32_t SizeOf(std::string_view text)
{
    uint32_t size = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), size);
    if (error != std::errc() || end != text.data() + text.size() || size == 0)
        throw UsageError("-s does not take " + std::string(text));
    return size;
}

Arguments Parse(std::span<const char* const> words)
{
    Arguments arguments;
    std::vector<std::string> paths;
    bool areOptionsOver = false;
    for (size_t index = 0; index < words.size(); ++index)
    {
        const std::string_view word = words[index];
        if (areOptionsOver || !word.starts_with('-') || word == "-")
            paths.emplace_back(word);
        else if (word == "--")
            areOptionsOver = true;
        else if (word == "-s" && index + 1 < words.size())
            arguments.size = SizeOf(words[++index]);
        else if (word.starts_with("-s") && word.size() > 2)
            arguments.size = SizeOf(word.substr(2));
        else
            throw UsageError(word == "-s" ? "-s needs a value" : "there is no option " + std::string(word));
    }
    if (paths.size() != 2)
        throw UsageError("INPUT and OUTPUT are needed");
    arguments.input = paths[0];
    arguments.output = paths[1];
    return arguments;
}

/// The last line that a reader has written.
std::string lastLine;

/// The reader's texts have no other letters than those of ASCII; what they quote of a file may.
void KeepLine(const wchar_t* line)
{
    lastLine.clear();
    for (; *line != L'\0'; ++line)
        lastLine += *line >= L' ' && *line <= L'~' ? static_cast<char>(*line) : '?';
}

void MakeThumbnail(const Arguments& arguments)
try
{
    const std::string path = PathOf(arguments.input);
    FileStream stream(path);
    RawImage image;
    SetDebugStringSink(KeepLine);
    if (!image.Open(&stream, readModeFrame, 0))
        throw std::runtime_error(lastLine.empty() ? "not a file that Lumora reads" : lastLine);
    const RawImageBase& reader = *image.Reader();
    const std::string absolute = std::filesystem::absolute(path).lexically_normal().string();
    const PngTexts texts = {
        {"Thumb::URI", UriOf(absolute)},
        {"Thumb::MTime", std::to_string(stream.ChangeTime())},
        {"Thumb::Size", std::to_string(stream.Size())},
        {"Thumb::Image::Width", std::to_string(reader.width)},
        {"Thumb::Image::Height", std::to_string(reader.height)},
        {"Software", nameAndVersion},
    };
    const DisplayedPicture picture(std::make_shared<DisplayPicture>(TakeDisplayPicture(*image.Reader())));
    if (picture.width == 0 || picture.height == 0)
        throw std::runtime_error("the frame has no pixels");
    const Box size = {picture.width, picture.height};
    const Box wanted = Fitted(size, {arguments.size, arguments.size});
    if (wanted == size)
        WritePng(arguments.output, picture, texts);
    else
        WritePng(arguments.output, *ScaledDown(picture, wanted), texts);
}
catch (const std::exception& exception)
{
    throw std::runtime_error(arguments.input + ": " + exception.what());
}

} // namespace

int main(int count, char** words)
{
    const std::span<const char* const> arguments(words + 1, words + count);
    constexpr int somethingFailed = 1;
    constexpr int wrongUsage = 2;
    try
    {
        for (const std::string_view word : arguments)
        {
            if (word == "--help" || word == "--version")
            {
                const bool isWritten =
                    std::fputs(word == "--help" ? help : (nameAndVersion + '\n').c_str(), stdout) >= 0;
                return isWritten && std::fflush(stdout) == 0 ? 0 : somethingFailed;
            }
        }
        MakeThumbnail(Parse(arguments));
        return 0;
    }
    catch (const UsageError& error)
    {
        std::fprintf(stderr, "lumora-thumbnailer: %s; see \"lumora-thumbnailer --help\"\n", error.what());
        return wrongUsage;
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "lumora-thumbnailer: %s\n", exception.what());
        return somethingFailed;
    }
}
