#pragma once

#include "lumora/pictures/UnfinishedText.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Lumora {

/// The message if a sheet would be empty.
inline constexpr const wchar_t* noFilesForSheet = L"there are no files for a sheet";

/// What the HTML sheet shows of one file.
struct GalleryEntry
{
    /// What people see: the name with its subfolder.
    std::wstring name;
    /// The full path.
    std::wstring source;
    /// The path of the picture from the folder of the page, with parts separated by '/'; empty if the file
    /// cannot be shown.
    std::wstring picture;
    /// The size of that picture, in pixels.
    uint32_t pictureWidth = 0;
    uint32_t pictureHeight = 0;
    /// The size of the source, in pixels, and its number of frames.
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t frames = 0;
    std::wstring pixelType;
    std::wstring software;
    std::wstring details;
    /// Why the file cannot be shown.
    std::wstring failure;
};

/// Writes the page of the HTML sheet, entry after entry, without keeping them. Whatever fails throws a
/// Failure.
class GalleryWriter
{
public:
    /// The page gets this path when it is finished; its folder is made. No picture has a side longer than
    /// `pictureSide`, in pixels.
    GalleryWriter(const std::wstring& path, std::wstring_view title, uint32_t pictureSide);

    void Add(const GalleryEntry& entry);

    /// Keeps the place of a file in the page of a shard that shows nothing of it.
    void LeaveOut();

    /// Completes the page after the last entry. The page of a shard gets the text of its mark.
    void Finish(std::wstring_view mark = {});

private:
    UnfinishedText page;
};

} // namespace Lumora
