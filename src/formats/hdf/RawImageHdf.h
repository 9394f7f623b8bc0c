#pragma once

#include "core/RawImageBase.h"
#include "formats/hdf/HdfContents.h"
#include "formats/hdf/entries/HdfImageEntry.h"
#include "platform/Platform.h"

#include <cstdint>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Reader of HDF5 files: image datasets, series of images, and the thumbnail that may be embedded.
class RawImageHdf final : public RawImageBase
{
public:
    /// Takes a handle of the library's mutex, which may be null. The handle is never closed, so that the
    /// mutex continues to exist.
    explicit RawImageHdf(HANDLE mutexHandle) noexcept : mutex(mutexHandle) {}
    RawImageHdf(const RawImageHdf&) = delete;
    RawImageHdf& operator=(const RawImageHdf&) = delete;
    ~RawImageHdf() override;

    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;

private:
    [[nodiscard]] bool ReadFile(HdfContents& file, uint32_t frameIndex);
    void ReadTexts(HdfContents& file);
    [[nodiscard]] bool ReadGrayFrame(HdfContents& file, const HdfImageEntry& entry);
    [[nodiscard]] bool ReadColourFrame(HdfContents& file, const HdfImageEntry& entry);

    HANDLE mutex;
    std::vector<HdfImageEntry> entries;
};

} // namespace Tav::Imaging::RawImage
