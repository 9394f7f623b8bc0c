#pragma once

#include "lumora/files/ByteFile.h"
#include "lumora/pictures/UnfinishedFile.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Lumora {

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

    /// Completes the page after the last entry.
    void Finish();

private:
    void Write(std::string_view text);
    void WriteOut();

    const UnfinishedFile file;
    // This is closed before the file is removed.
    ByteFile stream;
    /// What is not written yet.
    std::string pending;
};

} // namespace Lumora
