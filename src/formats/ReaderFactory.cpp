#include "core/ReaderFactory.h"

#include "formats/RawImageBin.h"
#include "formats/RawImageDm.h"
#include "formats/RawImageEmi.h"
#include "formats/RawImageMrc.h"
#include "formats/RawImageNpy.h"
#include "formats/RawImageRaw.h"
#include "formats/RawImageSer.h"
#include "formats/RawImageUbo.h"

namespace Tav::Imaging::RawImage {

std::unique_ptr<RawImageBase> MakeReader(Identity identity)
{
    switch (identity)
    {
    case Identity::Lattice:
        return std::make_unique<RawImageUbo>();
    case Identity::Dm3:
        return std::make_unique<RawImageDm3>();
    case Identity::Dm4:
        return std::make_unique<RawImageDm4>();
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

} // namespace Tav::Imaging::RawImage
