#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// What a test program has printed: its last words, and the tests that failed or were skipped.
struct TestLog
{
    explicit TestLog(const std::filesystem::path& log);

    /// The line that ends a run without failures; empty if there is none.
    std::string passed;
    std::vector<std::string> failed;
    std::vector<std::string> skipped;
};
