#include "core/RawImage.h"

#include "core/ReaderFactory.h"

#include <array>
#include <utility>

namespace Tav::Imaging::RawImage {

bool RawImage::Open(IStream* stream, uint32_t readMode, uint32_t frameIndex)
{
    if (!stream)
        return false;
    STATSTG statistics = {};
    if (stream->Stat(&statistics, STATFLAG_NONAME) != S_OK)
        return false;

    std::unique_ptr<RawImageBase> created{CreateReader(stream)};
    reader.reset();
    if (!created || !created->Read(stream, statistics.cbSize.QuadPart, readMode, frameIndex))
        return false;
    // A reader is held only after it has read its file, so an exception leaves no half-filled reader behind.
    reader = std::move(created);
    return true;
}

RawImageBase* RawImage::CreateReader(IStream* stream)
{
    STATSTG statistics = {};
    if (!stream || FAILED(stream->Stat(&statistics, STATFLAG_NONAME)) ||
        statistics.cbSize.QuadPart < identificationBytes)
        return nullptr;

    std::array<uint8_t, identificationBytes> header = {};
    ULONG countRead = 0;
    if (FAILED(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr)) ||
        FAILED(stream->Read(header.data(), header.size(), &countRead)) || countRead != header.size())
        return nullptr;

    return MakeReader(header).release();
}

} // namespace Tav::Imaging::RawImage
