#pragma once

#include "lumora/windows/Results.h"

#include <windows.h>

#include <objbase.h>

namespace Lumora {

/// COM for one thread. Lumora's classes can be called directly from any apartment.
class ComApartment
{
public:
    ComApartment() { Require(CoInitializeEx(nullptr, COINIT_MULTITHREADED), L"cannot start COM"); }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    ~ComApartment() { CoUninitialize(); }
};

} // namespace Lumora
