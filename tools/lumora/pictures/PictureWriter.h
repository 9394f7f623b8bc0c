#pragma once

#include "lumora/pictures/Imaging.h"
#include "lumora/pictures/PictureFormat.h"
#include "lumora/pictures/UnfinishedFile.h"
#include "shared/AreaScaler.h"
#include "shared/Picture.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Lumora {

/// A picture file that is written from the top row to the last. It gets its name, and replaces a picture of
/// that name, only when it is complete. Whatever fails throws a Failure.
class PictureWriter
{
public:
    /// Begins a file for pixels of so many channels, as in a Picture.
    PictureWriter(Imaging& imaging, const std::wstring& path, PictureFormat format, Box size,
                  uint32_t channels);
    PictureWriter(const PictureWriter&) = delete;
    PictureWriter& operator=(const PictureWriter&) = delete;
    ~PictureWriter();

    /// Adds rows, each `stride` bytes after the one before.
    void WriteRows(uint32_t rows, uint32_t stride, std::span<uint8_t> pixels);

    void Finish();

private:
    // This member is destroyed last, so that the file is closed before it is renamed or deleted.
    UnfinishedFile file;
    struct Means;
    std::unique_ptr<Means> means;
};

/// Writes the picture to a file, and returns its size. Throws a Failure.
Box WritePicture(Imaging& imaging, const Picture& picture, const std::wstring& path, PictureFormat format);

/// The size of a picture in a PNG or JPEG file. Throws a Failure.
[[nodiscard]] Box SizeOfPicture(Imaging& imaging, const std::wstring& path);

} // namespace Lumora
