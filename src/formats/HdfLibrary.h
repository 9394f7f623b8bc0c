#pragma once

#include "formats/HdfGuard.h"

namespace Tav::Imaging::RawImage {

/// The HDF5 library, started for one file and made ready for files from anywhere: no plug-ins, no links into
/// other files, and nothing printed on the host's console. What a damaged file leaves behind in it goes with
/// this object. The caller must hold the library's mutex.
class HdfLibrary
{
public:
    /// Throws std::bad_alloc.
    HdfLibrary();
    HdfLibrary(const HdfLibrary&) = delete;
    HdfLibrary& operator=(const HdfLibrary&) = delete;
    ~HdfLibrary();

    /// False where the library could not begin. The state in which it then is does not survive another start.
    [[nodiscard]] bool IsReady() const noexcept { return isReady; }
    /// True once the library has met the end of memory: what has been read may lack something.
    [[nodiscard]] bool HasRunOutOfMemory() const noexcept { return reserve.IsOpen(); }

private:
    HdfReserve reserve;
    bool isReady;
};

} // namespace Tav::Imaging::RawImage
