#pragma once

#include "support/BytesAndLines.h"

#include <string>
#include <vector>

/// One of the files in samples.
struct SampleFile
{
    std::string name;
    Bytes content;
};

/// All of them, in the order of their names. A failure of the test if there are none.
[[nodiscard]] std::vector<SampleFile> SampleFiles();
