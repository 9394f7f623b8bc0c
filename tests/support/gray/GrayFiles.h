#pragma once

#include "support/BytesAndLines.h"

#include <cstdint>
#include <string>
#include <vector>

/// A file of one format whose frames look like pictures of the gray stack, and what the shell shows of it.
struct GrayFile
{
    std::string name;
    Bytes content;
    /// What each frame shows: rows of `width` pixels from top to bottom.
    std::vector<Bytes> pictures;
    std::wstring software;
    /// Empty where the format has none to tell.
    std::wstring formatDetails;
    uint32_t width = 4;
};

/// A file of 16-bit samples in each format that has no other test of its own, both layouts of BIN included.
[[nodiscard]] std::vector<GrayFile> GrayFiles();
