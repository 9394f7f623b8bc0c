#pragma once

#include "lumora/files/ByteFile.h"
#include "lumora/linux/files/Descriptor.h"

#include <string>
#include <string_view>

namespace Lumora {

struct ByteFile::Handle
{
    Descriptor value;
};

/// Takes over the descriptor.
[[nodiscard]] ByteFile OwningFile(Descriptor descriptor);

/// A name as the system has it.
[[nodiscard]] std::string BytesOfName(std::wstring_view name);

} // namespace Lumora
