#pragma once

#include <functional>

namespace Lumora {

/// Does one read. A reader of an HDF5 file gives up when another one, here or in another program, is at work
/// for longer than a second. Then this waits for its turn, however long that takes, and reads again.
void ReadInTurn(const std::function<void()>& read);

} // namespace Lumora
