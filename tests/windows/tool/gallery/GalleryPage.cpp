#include "lumora/console/Failure.h"
#include "lumora/sheet/GalleryWriter.h"

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

std::wstring FromUtf8(const std::string& text)
{
    const auto length = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<size_t>(
        MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

/// The parts of the line that tabs separate.
std::vector<std::wstring> Fields(const std::string& line)
{
    std::vector<std::wstring> fields(1);
    for (const wchar_t character : FromUtf8(line))
    {
        if (character == L'\t')
            fields.emplace_back();
        else
            fields.back() += character;
    }
    return fields;
}

uint32_t Number(const std::wstring& field)
{
    return static_cast<uint32_t>(std::stoul(field));
}

/// The fields have the order of the structure.
Lumora::GalleryEntry EntryOf(const std::vector<std::wstring>& fields)
{
    Lumora::GalleryEntry entry;
    entry.name = fields.at(0);
    entry.source = fields.at(1);
    entry.picture = fields.at(2);
    entry.pictureWidth = Number(fields.at(3));
    entry.pictureHeight = Number(fields.at(4));
    entry.width = Number(fields.at(5));
    entry.height = Number(fields.at(6));
    entry.frames = Number(fields.at(7));
    entry.pixelType = fields.at(8);
    entry.software = fields.at(9);
    entry.details = fields.at(10);
    entry.failure = fields.at(11);
    return entry;
}

} // namespace

/// gallery_page LIST PAGE TITLE SIDE: writes a page with an entry for each line of the list.
int wmain(int count, wchar_t** arguments) // NOLINT(readability-identifier-naming)
{
    if (count != 5)
        return 2;
    const auto failure = Lumora::FailureOf([arguments] {
        Lumora::GalleryWriter writer(arguments[2], arguments[3], Number(arguments[4]));
        std::ifstream list(std::filesystem::path(arguments[1]), std::ios::binary);
        for (std::string line; std::getline(list, line);)
            writer.Add(EntryOf(Fields(line)));
        writer.Finish();
    });
    if (failure)
        std::fprintf(stderr, "%ls\n", failure->c_str());
    return failure ? 1 : 0;
}
