#pragma once

#include "windows/support/ModuleHeap.h"

#include <cstddef>

/// What a process has at one time. A failure of the test if Windows does not tell.
struct ProcessHoldings
{
    explicit ProcessHoldings(const ModuleHeap& heap);

    /// Blocks of memory that the module has taken.
    size_t moduleBlocks;
    /// Open handles.
    size_t handles;
    /// Memory that the process shares with no other.
    size_t bytes;
};
