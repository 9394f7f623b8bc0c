#pragma once

#include "platform/ComPtr.h"

#include <windows.h>

#include <wincodec.h>

namespace Lumora {

/// WIC's factory. Throws a Failure, also when WIC does not know Lumora's decoder.
[[nodiscard]] ComPtr<IWICImagingFactory> MakeImagingFactory();

/// Throws a Failure when WIC does not know Lumora's decoder.
void RequireDecoder();

} // namespace Lumora
