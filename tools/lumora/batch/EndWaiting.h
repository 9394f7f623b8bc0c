#pragma once

#include <thread>

namespace Lumora {

/// If the thread waits for bytes of a file or of a pipe, its Read fails.
void EndWaiting(std::thread& thread);

} // namespace Lumora
