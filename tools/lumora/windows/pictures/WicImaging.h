#pragma once

#include "lumora/pictures/Imaging.h"
#include "lumora/windows/ComApartment.h"
#include "platform/ComPtr.h"

#include <windows.h>

#include <wincodec.h>

namespace Lumora {

struct Imaging::Means
{
    /// WIC's factory. Throws a Failure, also when WIC does not know Lumora's decoder.
    IWICImagingFactory& Factory();

private:
    const ComApartment apartment;
    ComPtr<IWICImagingFactory> factory;
};

} // namespace Lumora
