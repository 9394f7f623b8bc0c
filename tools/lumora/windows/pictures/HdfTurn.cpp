#include "lumora/windows/pictures/HdfTurn.h"

#include "lumora/console/Failure.h"
#include "lumora/pictures/DecoderLines.h"
#include "lumora/windows/files/OwnedHandle.h"
#include "platform/HdfMutexName.h"

namespace Lumora {

using Tav::Imaging::RawImage::hdfMutexName;
using Tav::Imaging::RawImage::hdfMutexTimeout;

namespace {

/// Holds the mutex of the HDF5 library, so that the next read on this thread gets it at once. A reader
/// releases the mutex once more than it takes it, so the second read would have to wait again.
class HdfTurn
{
public:
    HdfTurn() : mutex(OpenMutexW(SYNCHRONIZE, FALSE, hdfMutexName))
    {
        // Without a mutex, no reader can ever read.
        if (!mutex)
            throw Failure{L"there is no mutex for HDF5 files"};
        WaitForSingleObject(mutex.get(), INFINITE);
    }
    HdfTurn(const HdfTurn&) = delete;
    HdfTurn& operator=(const HdfTurn&) = delete;
    ~HdfTurn() { ReleaseMutex(mutex.get()); }

private:
    OwnedHandle mutex;
};

/// Returns false if the reader has given up.
bool HasRead(const std::function<void()>& read)
try
{
    read();
    return true;
}
catch (const Failure&)
{
    if (!DecoderLines::ForgetLast(hdfMutexTimeout))
        throw;
    return false;
}

} // namespace

void ReadInTurn(const std::function<void()>& read)
{
    bool hasRead = HasRead(read);
    while (!hasRead)
    {
        const HdfTurn turn;
        hasRead = HasRead(read);
    }
}

} // namespace Lumora
