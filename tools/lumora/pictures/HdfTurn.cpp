#include "lumora/pictures/HdfTurn.h"

#include "platform/HdfMutexName.h"

#include <algorithm>

namespace Lumora {

bool HasMissedTurn(const std::vector<std::wstring>& decoderLines)
{
    return std::ranges::find(decoderLines, L"[Lumora] HDF: Mutex timeout") != decoderLines.end();
}

HdfTurn::HdfTurn() : mutex(OpenMutexW(SYNCHRONIZE, FALSE, Tav::Imaging::RawImage::hdfMutexName))
{
    if (!mutex)
        return;
    // An abandoned mutex belongs to the thread that waits, too.
    const DWORD result = WaitForSingleObject(mutex.get(), INFINITE);
    hasCome = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

HdfTurn::~HdfTurn()
{
    // A reader releases the mutex once more than it takes it, so this may find nothing to release.
    if (hasCome)
        ReleaseMutex(mutex.get());
}

} // namespace Lumora
