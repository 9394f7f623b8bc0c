#pragma once

namespace Tav::Imaging::RawImage {

/// The mutex that serialises every use of the HDF5 library, in all threads of all processes that know its
/// name.
constexpr wchar_t hdfMutexName[] = L"Perivane_Mutex_HDF5_Library";

} // namespace Tav::Imaging::RawImage
