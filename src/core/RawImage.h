#pragma once

#include "core/RawImageBase.h"

#include <cstdint>
#include <memory>

namespace Tav::Imaging::RawImage {

/// Owns the reader of one opened file, or nothing.
class RawImage
{
public:
    RawImage() = default;
    RawImage(const RawImage&) = delete;
    RawImage& operator=(const RawImage&) = delete;
    virtual ~RawImage() = default;

    /// Identifies the stream's format and reads one frame (`readMode` 1) or the header only (0). Returns
    /// false if the stream cannot be read, has no known format or is damaged. Then no reader is held, with
    /// one exception: if the stream is null or does not report its size, an earlier reader stays. Exceptions
    /// of StreamReader's constructor and of exhausted memory pass through, and no half-filled reader is held.
    [[nodiscard]] bool Open(IStream* stream, uint32_t readMode, uint32_t frameIndex);

    /// Returns a new reader, owned by the caller, for the format that the stream's first 64 bytes show.
    /// Returns null, after a diagnostic line, if the format is not read. Returns null without a line if the
    /// stream cannot be read or is shorter than 64 bytes.
    [[nodiscard]] static RawImageBase* CreateReader(IStream* stream);

    /// The reader, or null; owned by this holder.
    [[nodiscard]] const RawImageBase* Reader() const noexcept { return reader.get(); }
    [[nodiscard]] RawImageBase* Reader() noexcept { return reader.get(); }

private:
    std::unique_ptr<RawImageBase> reader;
};

} // namespace Tav::Imaging::RawImage
