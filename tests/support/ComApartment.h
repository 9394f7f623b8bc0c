#pragma once

#include "platform/Platform.h"

/// What a host has done on a thread that uses our classes; the codecs of Windows want it. Nothing elsewhere.
class ComApartment
{
public:
    ComApartment()
    {
#ifdef _WIN32
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
#endif
    }
    ~ComApartment()
    {
#ifdef _WIN32
        CoUninitialize();
#endif
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
};
