#pragma once

#include "lumora/files/ByteFile.h"
#include "lumora/windows/files/OwnedHandle.h"

namespace Lumora {

struct ByteFile::Handle
{
    OwnedHandle value;
};

/// Takes over the handle.
[[nodiscard]] ByteFile OwningFile(HANDLE handle);

} // namespace Lumora
