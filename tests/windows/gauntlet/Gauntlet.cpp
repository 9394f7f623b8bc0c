#include "windows/gauntlet/Gauntlet.h"

#include "windows/gauntlet/RunProgram.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace {

std::filesystem::path ThisProgram()
{
    wchar_t path[32768];
    const DWORD length = GetModuleFileNameW(nullptr, path, static_cast<DWORD>(std::size(path)));
    return std::wstring(path, length);
}

Finding EarlyEnd(const std::filesystem::path& file, unsigned long exitCode, const Limits& limits)
{
    if (exitCode == exitOutOfTime)
        return {"hang", file, "more than " + std::to_string(limits.seconds) + " s"};
    if (exitCode == exitOutOfMemory)
        return {"memory", file, "more than " + std::to_string(limits.mebibytes) + " MiB"};
    char text[32];
    std::snprintf(text, sizeof(text), "exit code 0x%08lX", exitCode);
    return {"crash", file, text};
}

/// Adds what a worker's line tells of a file. Returns the outcome.
std::string TakeLine(const std::string& line, const std::filesystem::path& file, const Course& course,
                     std::vector<Finding>& findings)
{
    std::istringstream fields(line);
    unsigned long milliseconds = 0;
    size_t heapBytes = 0;
    unsigned long handles = 0;
    fields >> milliseconds >> heapBytes >> handles >> std::ws;
    if (heapBytes != 0 || handles != 0)
        findings.push_back(
            {"leak", file,
             std::to_string(heapBytes) + " bytes and " + std::to_string(handles) + " handles each time"});
    if (milliseconds > course.slowMilliseconds)
        findings.push_back({"slow", file, std::to_string(milliseconds) + " ms"});
    std::string outcome;
    std::getline(fields, outcome, '\r');
    return outcome;
}

} // namespace

std::vector<Finding> RunWorkers(const Course& course, const OnProgress& onProgress)
{
    std::vector<Finding> findings;
    size_t done = 0;
    while (done < course.files.size())
    {
        std::vector<std::wstring> words = {ThisProgram().wstring(),
                                           L"--work",
                                           std::to_wstring(done),
                                           L"--seconds",
                                           std::to_wstring(course.limits.seconds),
                                           L"--memory",
                                           std::to_wstring(course.limits.mebibytes)};
        words.insert(words.end(), course.folders.begin(), course.folders.end());
        // The worker itself sees to the limits.
        const unsigned longEnough = 3600 + static_cast<unsigned>(course.files.size()) * course.limits.seconds;
        const auto exitCode = RunProgram(words, longEnough, [&](const std::string& line) {
            if (done == course.files.size())
                return;
            const std::string outcome = TakeLine(line, course.files[done], course, findings);
            onProgress(++done, outcome);
        });
        if (done == course.files.size())
            break;
        findings.push_back(EarlyEnd(course.files[done], exitCode.value_or(exitOutOfTime), course.limits));
        onProgress(++done, findings.back().kind);
    }
    return findings;
}

std::vector<Finding> RunTool(const Course& course, const OnProgress& onProgress)
{
    constexpr size_t filesAtOnce = 50;
    const std::wstring tool = ThisProgram().replace_filename(L"lumora.exe").wstring();
    const std::filesystem::path pictures =
        std::filesystem::temp_directory_path() / ("gauntlet-" + std::to_string(GetCurrentProcessId()));
    const std::vector<std::vector<std::wstring>> commands = {
        {tool, L"info", L"--json", L"--"},
        {tool, L"render", L"--size", L"64", L"-o", pictures.wstring(), L"--"},
    };
    // Whether the tool ends with a result, be it that it could not do anything with a file.
    const auto isGood = [&](std::vector<std::wstring> words, size_t first, size_t count) {
        for (size_t index = first; index < first + count; ++index)
            words.push_back(course.files[index].wstring());
        const auto exitCode = RunProgram(words, static_cast<unsigned>(count) * course.limits.seconds,
                                         [](const std::string&) {});
        return exitCode && *exitCode <= 1;
    };
    std::vector<Finding> findings;
    for (size_t first = 0; first < course.files.size(); first += filesAtOnce)
    {
        const size_t count = std::min(filesAtOnce, course.files.size() - first);
        for (const std::vector<std::wstring>& words : commands)
        {
            if (isGood(words, first, count))
                continue;
            for (size_t index = first; index < first + count; ++index)
            {
                if (!isGood(words, index, 1))
                    findings.push_back(
                        {"crash", course.files[index], "lumora.exe neither succeeds nor refuses"});
            }
        }
        onProgress(first + count, "lumora.exe");
    }
    std::error_code ignored;
    std::filesystem::remove_all(pictures, ignored);
    return findings;
}
