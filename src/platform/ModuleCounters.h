#pragma once

#include <atomic>
#include <cstdint>

/// Number of live COM objects of the module.
extern std::atomic<uint32_t> objectCount;

/// Net number of LockServer(TRUE) calls.
extern std::atomic<uint32_t> lockCount;
