#include "lumora/windows/pictures/ImagingFactory.h"

#include "lumora/console/Failure.h"
#include "registration/ClassIds.h"

namespace Lumora {

ComPtr<IWICImagingFactory> MakeImagingFactory()
{
    ComPtr<IWICImagingFactory> factory;
    Require(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                             factory.PutVoid()),
            L"cannot start WIC");
    ComPtr<IWICComponentInfo> decoder;
    if (FAILED(factory->CreateComponentInfo(CLSID_LumoraDecoder, decoder.Put())))
        throw Failure{notRegistered};
    return factory;
}

void RequireDecoder()
{
    static_cast<void>(MakeImagingFactory());
}

} // namespace Lumora
