#pragma once

#include "lumora/doctor/Diagnosis.h"
#include "lumora/files/FileSource.h"
#include "platform/ComPtr.h"
#include "registration/RegistryTable.h"

#include <wincodec.h>

namespace Lumora {

/// Starts the classes, which are registered in that scope. Returns WIC's factory, or nothing if WIC does not
/// know the decoder.
[[nodiscard]] ComPtr<IWICImagingFactory> CheckClasses(Scope scope, Diagnosis& diagnosis);

/// Opens the file as Explorer does, for a thumbnail and for properties, and shows what the reader noted.
void CheckOpening(IWICImagingFactory& factory, const SourceFile& file, Diagnosis& diagnosis);

} // namespace Lumora
