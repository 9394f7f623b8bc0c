#include "lumora/windows/pictures/WicImaging.h"

#include "lumora/windows/Results.h"
#include "registration/ClassIds.h"

namespace Lumora {

Imaging::Imaging() : means(std::make_unique<Means>()) {}

Imaging::~Imaging() = default;

void Imaging::RequireDecoder() const
{
    static_cast<void>(means->Factory());
}

void Imaging::RequireProperties() const
{
    ComPtr<IClassFactory> factory;
    const HRESULT result = CoGetClassObject(CLSID_LumoraPropertyHandler, CLSCTX_INPROC_SERVER, nullptr,
                                            IID_IClassFactory, factory.PutVoid());
    if (result == REGDB_E_CLASSNOTREG)
        throw Failure{notRegistered};
    Require(result, L"cannot start Lumora's property handler");
}

IWICImagingFactory& Imaging::Means::Factory()
{
    if (factory)
        return *factory.Get();
    ComPtr<IWICImagingFactory> started;
    Require(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                             started.PutVoid()),
            L"cannot start WIC");
    ComPtr<IWICComponentInfo> decoder;
    if (FAILED(started->CreateComponentInfo(CLSID_LumoraDecoder, decoder.Put())))
        throw Failure{notRegistered};
    factory = std::move(started);
    return *factory.Get();
}

} // namespace Lumora
