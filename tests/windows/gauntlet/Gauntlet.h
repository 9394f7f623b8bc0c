#pragma once

#include "windows/gauntlet/Worker.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// Something that must not happen, or a file that took long.
struct Finding
{
    /// In one word: crash, hang, memory, leak or slow.
    const char* kind;
    std::filesystem::path file;
    std::string detail;
};

/// What files are taken through.
struct Course
{
    std::vector<std::wstring> folders;
    std::vector<std::filesystem::path> files;
    Limits limits;
    /// A file that takes longer is slow.
    unsigned slowMilliseconds = 1000;
};

/// Called with the number of files that are done and what is known of the last of them.
using OnProgress = std::function<void(size_t done, const std::string& outcome)>;

/// Has child processes take the files through WIC and the property handler. One that ends early names its
/// file by the number of lines that it has printed; the next child begins behind this file.
[[nodiscard]] std::vector<Finding> RunWorkers(const Course& course, const OnProgress& onProgress);

/// Has lumora.exe, which lies beside this program, print and render the files.
[[nodiscard]] std::vector<Finding> RunTool(const Course& course, const OnProgress& onProgress);
