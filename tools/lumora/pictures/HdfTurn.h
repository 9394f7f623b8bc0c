#pragma once

#include "lumora/files/OwnedHandle.h"

#include <string>
#include <vector>

namespace Lumora {

/// Whether the reader of an HDF5 file has given up, because another one was at work for longer than it waits.
[[nodiscard]] bool HasMissedTurn(const std::vector<std::wstring>& decoderLines);

/// Waits, however long it takes, until no HDF5 file is being read, here or in another program. The next
/// read on this thread then does not have to wait. It is only fair towards the others to use it for one file.
class HdfTurn
{
public:
    HdfTurn();
    HdfTurn(const HdfTurn&) = delete;
    HdfTurn& operator=(const HdfTurn&) = delete;
    ~HdfTurn();

    /// False if there is nothing to wait for.
    [[nodiscard]] bool HasCome() const noexcept { return hasCome; }

private:
    OwnedHandle mutex;
    bool hasCome = false;
};

} // namespace Lumora
