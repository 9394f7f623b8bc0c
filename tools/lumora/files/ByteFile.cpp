#include "lumora/files/ByteFile.h"

namespace Lumora {

bool ReadWhole(ByteFile& file, std::span<uint8_t> target)
{
    while (!target.empty())
    {
        const size_t count = file.Read(target);
        if (count == 0)
            return false;
        target = target.subspan(count);
    }
    return true;
}

} // namespace Lumora
