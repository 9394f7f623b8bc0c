#include "core/ReaderFactory.h"

#include "formats/RawImageMrc.h"

namespace Tav::Imaging::RawImage {

std::unique_ptr<RawImageBase> MakeReader(Identity identity)
{
    switch (identity)
    {
    case Identity::Mrc:
        return std::make_unique<RawImageMrc>();
    default:
        return nullptr;
    }
}

} // namespace Tav::Imaging::RawImage
