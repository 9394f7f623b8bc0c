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

/// True for the sample whose format is read under a mutex that all processes share.
[[nodiscard]] bool IsHdf(const SampleFile& sample);
