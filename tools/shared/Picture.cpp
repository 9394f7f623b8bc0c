#include "shared/Picture.h"

#include <algorithm>

namespace Lumora {

void MemoryPicture::CopyRow(uint32_t row, uint8_t* target) const
{
    std::ranges::copy(std::span(pixels).subspan(row * RowBytes(), RowBytes()), target);
}

} // namespace Lumora
