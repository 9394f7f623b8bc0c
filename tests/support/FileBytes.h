#pragma once

#include "support/BytesAndLines.h"

#include <filesystem>
#include <fstream>
#include <iterator>

/// All bytes of a file on disk; none when it cannot be read.
inline Bytes FileBytes(const std::filesystem::path& path)
{
    std::ifstream file{path, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}
