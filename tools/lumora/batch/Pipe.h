#pragma once

#include "lumora/files/ByteFile.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Lumora {

/// Sends a message to the process at the other end of a pipe. Returns false if that process has ended.
[[nodiscard]] bool SendTo(ByteFile& pipe, const std::vector<uint8_t>& message);

/// Waits for the next message. Nothing if the process at the other end has ended.
[[nodiscard]] std::optional<std::vector<uint8_t>> ReceiveFrom(ByteFile& pipe);

} // namespace Lumora
