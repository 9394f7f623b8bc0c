#include "core/ReaderFactory.h"

#include "core/Diagnostics.h"
#include "formats/Identification.h"
#include "formats/RawImageEmi.h"
#include "formats/RawImageNpy.h"
#include "formats/RawImageRaw.h"
#include "formats/RawImageSer.h"
#include "formats/bin/RawImageBin.h"
#include "formats/dm/RawImageDm.h"
#include "formats/hdf/HdfLog.h"
#include "formats/hdf/HdfMutexLock.h"
#include "formats/hdf/RawImageHdf.h"
#include "formats/lattice/RawImageUbo.h"
#include "formats/mrc/RawImageMrc.h"

namespace Tav::Imaging::RawImage {

namespace {

/// Makes the reader even if there is no mutex, because the reader then reports the failure.
std::unique_ptr<RawImageBase> MakeHdfReader()
{
    const HANDLE mutex = CreateMutexW(nullptr, 0, hdfMutexName);
    if (!mutex)
        hdfLog.Write(L"Failed to create mutex");
    return std::make_unique<RawImageHdf>(mutex);
}

std::unique_ptr<RawImageBase> MakeReaderOf(Identity identity)
{
    switch (identity)
    {
    case Identity::Lattice:
        return std::make_unique<RawImageUbo>();
    case Identity::Dm3:
        return std::make_unique<RawImageDm3>();
    case Identity::Dm4:
        return std::make_unique<RawImageDm4>();
    case Identity::Hdf:
        return MakeHdfReader();
    case Identity::Emi:
        return std::make_unique<RawImageEmi>();
    case Identity::Mrc:
        return std::make_unique<RawImageMrc>();
    case Identity::Npy:
        return std::make_unique<RawImageNpy>();
    case Identity::Raw:
        return std::make_unique<RawImageRaw>();
    case Identity::Ser:
        return std::make_unique<RawImageSer>();
    case Identity::Bin:
        return std::make_unique<RawImageBin>();
    default:
        return nullptr;
    }
}

/// Says why a stream gets no reader: WIC reads its format itself, or the format is not known.
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

std::unique_ptr<RawImageBase> MakeReader(std::span<const uint8_t, identificationBytes> header)
{
    const Identity identity = Identify(header);
    std::unique_ptr<RawImageBase> reader = MakeReaderOf(identity);
    if (!reader)
        WriteDiagnostic(RefusalOf(identity));
    return reader;
}

} // namespace Tav::Imaging::RawImage
