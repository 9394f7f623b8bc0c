#pragma once

#include "lumora/console/Failure.h"
#include "lumora/pictures/OpenedFile.h"
#include "lumora/pictures/PixelBlock.h"
#include "shared/AreaScaler.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Lumora {

/// A file whose frames are wanted in some size. Whatever fails throws a Failure.
class PictureFile
{
public:
    PictureFile(Imaging& imaging, const std::wstring& path) : file(imaging, path) {}

    [[nodiscard]] uint32_t FrameCount() const { return file.FrameCount(); }

    /// One frame, scaled down where it is larger than the box. It may need this object.
    [[nodiscard]] std::unique_ptr<Picture> Frame(uint32_t index, std::optional<Box> box) const;

private:
    OpenedFile file;
};

/// None of the frames that are wanted is in the file, which has so many.
[[nodiscard]] Failure NoFrames(uint32_t frameCount);

/// A copy of the picture in memory.
[[nodiscard]] PixelBlock CopyOf(const Picture& picture);

} // namespace Lumora
