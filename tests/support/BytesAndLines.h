#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// What a file, a frame or a picture consists of.
using Bytes = std::vector<uint8_t>;

/// What is written to the debugger output.
using Lines = std::vector<std::string>;
