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

    /// Identifies the stream's format and reads one frame (`readMode` 1) or the header only (0).
    /// False when the stream cannot be read, is of no known format or is damaged. No reader is held then,
    /// except that a stream that is null or does not tell its size leaves an earlier one in place.
    /// Passes on the exceptions of StreamReader's construction and of exhausted memory, holding no reader.
    [[nodiscard]] bool Open(IStream* stream, uint32_t readMode, uint32_t frameIndex);

    /// A new reader for the format that the stream's first 64 bytes show, owned by the caller; null, after
    /// a diagnostic line, for a format that is not read, and silently for a stream that cannot be read or
    /// is shorter than 64 bytes.
    [[nodiscard]] static RawImageBase* CreateReader(IStream* stream);

    /// The reader, or null; owned by this holder.
    [[nodiscard]] const RawImageBase* Reader() const noexcept { return reader.get(); }
    [[nodiscard]] RawImageBase* Reader() noexcept { return reader.get(); }

private:
    std::unique_ptr<RawImageBase> reader;
};

} // namespace Tav::Imaging::RawImage
