#include "core/RawImage.h"

#include "core/Diagnostics.h"
#include "core/ReaderFactory.h"
#include "formats/Identification.h"

#include <array>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

/// Says why a stream gets no reader: its format is WIC's own business, or nobody's.
const wchar_t* RefusalOf(Identity identity) noexcept
{
    switch (identity)
    {
    case Identity::EnhancedMetafile:
        return L"Load request for not supported Enhanced MetaFile (EMF)";
    case Identity::Bitmap:
        return L"Unsupported bitmap file format detected";
    case Identity::Jpeg:
        return L"Unsupported JPEG file format detected";
    case Identity::TiffLittleEndian:
        return L"Unsupported TIFF file format (little-endian) detected";
    case Identity::TiffBigEndian:
        return L"Unsupported TIFF file format (big-endian) detected";
    default:
        return L"Could not identify the file format";
    }
}

} // namespace

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
    // A reader is only held when it has read its file: nobody sees one that an exception left half filled.
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

    const Identity identity = Identify(header);
    std::unique_ptr<RawImageBase> created = MakeReader(identity);
    if (!created)
        WriteDiagnostic(RefusalOf(identity));
    return created.release();
}

} // namespace Tav::Imaging::RawImage
