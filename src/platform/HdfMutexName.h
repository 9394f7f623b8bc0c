#pragma once

namespace Tav::Imaging::RawImage {

/// The mutex that serialises every use of the HDF5 library, in all threads of all processes that know its
/// name.
constexpr wchar_t hdfMutexName[] = L"Perivane_Mutex_HDF5_Library";

/// What the reader notes when it has not got the mutex.
constexpr wchar_t hdfMutexTimeout[] = L"[Lumora] HDF: Mutex timeout";

} // namespace Tav::Imaging::RawImage
