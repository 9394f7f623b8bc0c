#pragma once

#include "platform/Platform.h"

/// What a host has done on a thread that uses our classes; the codecs of Windows want it. Nothing elsewhere.
class ComApartment
{
public:
#ifdef _WIN32
    ComApartment()
    {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    }
    ~ComApartment()
    {
        CoUninitialize();
    }
#else
    ComApartment() {}
    ~ComApartment() {}
#endif
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
};
