#include "platform/ModuleCounters.h"

std::atomic<uint32_t> objectCount{0};
std::atomic<uint32_t> lockCount{0};
