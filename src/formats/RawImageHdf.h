#pragma once

#include "core/RawImageBase.h"
#include "formats/HdfImageEntry.h"
#include "platform/Platform.h"

#include <H5Ipublic.h>

#include <cstdint>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Reader of HDF5 files: image datasets, series of images, and the picture in small that may be embedded.
class RawImageHdf final : public RawImageBase
{
public:
    /// Takes a handle of the library's mutex, which may be null and is never closed.
    explicit RawImageHdf(HANDLE mutexHandle) noexcept : mutex(mutexHandle) {}
    RawImageHdf(const RawImageHdf&) = delete;
    RawImageHdf& operator=(const RawImageHdf&) = delete;
    ~RawImageHdf() override;

    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;

private:
    [[nodiscard]] bool ReadFile(IStream* stream, uint64_t streamSize, std::vector<uint8_t>& image,
                                uint32_t frameIndex);
    void ReadTexts(hid_t file);
    [[nodiscard]] bool ReadGrayFrame(hid_t file, const HdfImageEntry& entry);
    [[nodiscard]] bool ReadColourFrame(hid_t file, const HdfImageEntry& entry);

    HANDLE mutex;
    std::vector<HdfImageEntry> entries;
};

} // namespace Tav::Imaging::RawImage
