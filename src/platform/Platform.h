#pragma once

/// The operating-system types and calls that the portable code uses. On Windows they are the SDK's own;
/// elsewhere small stand-ins, so that the same sources run under sanitizers and fuzzers.
#ifdef _WIN32
#include <windows.h>

#include <objidl.h>
#include <propidl.h>
#else
#include "platform/StandIns.h"
#endif
