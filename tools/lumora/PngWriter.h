#pragma once

#include <wincodec.h>

#include <string>

namespace Lumora {

/// Writes the picture as a PNG file. A file of that name is replaced once the new one is complete. Throws a
/// Failure.
void WritePng(IWICImagingFactory& factory, IWICBitmapSource& picture, const std::wstring& path);

} // namespace Lumora
