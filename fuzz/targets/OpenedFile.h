#pragma once

#include "Target.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"

#include "core/RawImage.h"

/// A file that a target has opened, or has tried to open, and what must hold for every file.
class OpenedFile
{
public:
    /// The size of the file chooses the frame and the vectors. So either kind of vectors sees half of the
    /// inputs.
    OpenedFile(std::span<const uint8_t> file, uint32_t readMode);

    Tav::Imaging::RawImage::RawImage image;

    /// Requires that a picture has the size that the reader states, and the pixels and lines of the
    /// reference.
    void RequireReferencePicture() const;
    /// Requires that a picture has the size that the reader states, or that there is none.
    void RequirePictureOfStatedSize() const;

private:
    /// Remembers where the last read began: that of the frame's samples.
    class WatchedStream : public TestStream
    {
    public:
        using TestStream::TestStream;

        HRESULT Read(void* buffer, ULONG count, ULONG* countRead) override
        {
            lastReadAt = position;
            return TestStream::Read(buffer, count, countRead);
        }

        uint64_t lastReadAt = 0;
    };

    WatchedStream stream;
    Lines lines;
};
