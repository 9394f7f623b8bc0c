#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

/// What one file may take.
struct Limits
{
    unsigned seconds = 30;
    unsigned mebibytes = 2048;
};

/// How a worker ends if a file made it exceed a limit.
constexpr unsigned long exitOutOfTime = 70;
constexpr unsigned long exitOutOfMemory = 71;

/// What a worker does wrong on purpose, with a file of this name, so that one can see that it is found.
constexpr const wchar_t* rehearsedCrash = L"rehearsal.crash";
constexpr const wchar_t* rehearsedHang = L"rehearsal.hang";
constexpr const wchar_t* rehearsedMemory = L"rehearsal.memory";
constexpr const wchar_t* rehearsedLeak = L"rehearsal.leak";

/// Takes the files from number `first` on through Lumora, in this process. Prints a line for each:
/// milliseconds, what each further reading leaves behind, and the outcome. If a limit is exceeded, the
/// process ends.
void Work(const std::vector<std::filesystem::path>& files, size_t first, const Limits& limits);
