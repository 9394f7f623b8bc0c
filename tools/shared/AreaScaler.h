#pragma once

#include "shared/Picture.h"

#include <memory>

namespace Lumora {

/// The largest size of the picture's shape that has room in the box; the picture's own size if that is
/// smaller. No side of the picture or of the box is 0.
[[nodiscard]] Box Fitted(Box picture, Box room) noexcept;

/// The picture in a smaller size. Each new pixel is the average of the area that it covers, rounded half up.
[[nodiscard]] std::unique_ptr<MemoryPicture> ScaledDown(const Picture& picture, Box size);

} // namespace Lumora
