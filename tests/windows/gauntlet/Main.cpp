// Takes every file below a folder through Lumora, in child processes, and reports crashes, hangs, leaks and
// slow files. It runs on Windows, and under Wine with ./dev gauntlet.

#include "windows/gauntlet/FilesBelow.h"
#include "windows/gauntlet/Gauntlet.h"

#include <io.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <exception>
#include <optional>

namespace {

constexpr const char* help =
    "Take every file below a folder through Lumora, and report what must not happen.\n"
    "\n"
    "Usage: gauntlet [--seconds N] [--memory MIB] [--verbose] PATH...\n"
    "\n"
    "A PATH is a file, or a folder with all files below it. Each file goes through\n"
    "WIC (all pixels of up to nine frames), through the property handler (all values)\n"
    "and through lumora.exe, which must lie beside this program. Lumora must be\n"
    "registered. A finding is a line: crash, hang, memory or leak, the file, and what\n"
    "is known. A slow file is a line too, but no finding. The exit code is 0 without a\n"
    "finding, 1 with one, and 2 for a usage error.\n"
    "\n"
    "Options:\n"
    "  --seconds N   what a file may take before it counts as a hang. Default: 30\n"
    "  --memory MIB  what a file may take of memory. Default: 2048\n"
    "  --verbose     print what came of each file\n"
    "  --help        this text\n";

struct Arguments
{
    Course course;
    /// For a child process: the number of its first file.
    std::optional<size_t> firstFile;
    bool isVerbose = false;
    bool wantsHelp = false;
    bool isUsable = true;
};

Arguments Parse(int count, wchar_t** words)
{
    Arguments arguments;
    for (int index = 1; index < count; ++index)
    {
        const std::wstring word = words[index];
        const bool takesNumber = word == L"--seconds" || word == L"--memory" || word == L"--work";
        const unsigned long number =
            takesNumber && index + 1 < count ? std::wcstoul(words[++index], nullptr, 10) : 0;
        if (word == L"--seconds")
            arguments.course.limits.seconds = number;
        else if (word == L"--memory")
            arguments.course.limits.mebibytes = number;
        else if (word == L"--work")
            arguments.firstFile = number;
        else if (word == L"--verbose")
            arguments.isVerbose = true;
        else if (word == L"--help")
            arguments.wantsHelp = true;
        else if (word.starts_with(L"--"))
            arguments.isUsable = false;
        else
            arguments.course.folders.push_back(word);
    }
    const Limits& limits = arguments.course.limits;
    arguments.isUsable =
        arguments.isUsable && limits.seconds > 0 && limits.mebibytes > 0 && !arguments.course.folders.empty();
    return arguments;
}

std::string Text(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

int Run(const Arguments& arguments)
{
    const Course& course = arguments.course;
    const bool showsProgress = _isatty(_fileno(stderr)) != 0 && !arguments.isVerbose;
    const auto onProgress = [&](size_t done, const std::string& outcome) {
        if (arguments.isVerbose)
            std::printf("%s: %s\n", Text(course.files[done - 1]).c_str(), outcome.c_str());
        else if (showsProgress)
            std::fprintf(stderr, "\r%zu of %zu ", done, course.files.size());
    };
    std::vector<Finding> findings = RunWorkers(course, onProgress);
    std::ranges::copy(RunTool(course, onProgress), std::back_inserter(findings));
    if (showsProgress)
        std::fprintf(stderr, "\r");

    size_t slow = 0;
    for (const Finding& finding : findings)
    {
        std::printf("%-6s  %s  %s\n", finding.kind, Text(finding.file).c_str(), finding.detail.c_str());
        slow += std::string(finding.kind) == "slow" ? 1 : 0;
    }
    std::printf("%zu files: %zu findings, %zu slow\n", course.files.size(), findings.size() - slow, slow);
    return findings.size() > slow ? 1 : 0;
}

} // namespace

// The start-up code requires this name.
int wmain(int count, wchar_t** words) // NOLINT(readability-identifier-naming)
{
    try
    {
        Arguments arguments = Parse(count, words);
        if (arguments.wantsHelp || !arguments.isUsable)
        {
            std::fputs(help, arguments.wantsHelp ? stdout : stderr);
            return arguments.wantsHelp ? 0 : 2;
        }
        arguments.course.files = FilesBelow(arguments.course.folders);
        if (arguments.firstFile)
        {
            Work(arguments.course.files, *arguments.firstFile, arguments.course.limits);
            return 0;
        }
        return Run(arguments);
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "gauntlet: %s\n", exception.what());
        return 1;
    }
}
