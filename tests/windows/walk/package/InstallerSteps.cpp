#include "windows/walk/package/InstallerSteps.h"

#include "windows/walk/programs/LoggedProgram.h"

#include <windows.h>

#include <algorithm>
#include <utility>

namespace {

constexpr unsigned secondsForEach = 300;

} // namespace

InstallerSteps::InstallerSteps(Report& report, std::filesystem::path logs)
    : report(report), logs(std::move(logs))
{}

bool InstallerSteps::Install(const std::string& step, const std::filesystem::path& package,
                             std::initializer_list<unsigned long> codes,
                             const std::vector<std::wstring>& properties)
{
    const std::optional<unsigned long> code = RunInstaller(L"/i", package, properties);
    return Add(step, code && std::ranges::find(codes, *code) != codes.end(), code);
}

void InstallerSteps::Refuse(const std::string& step, const std::filesystem::path& package)
{
    const std::optional<unsigned long> code = RunInstaller(L"/i", package);
    Add(step, code && *code != ERROR_SUCCESS && *code != ERROR_SUCCESS_REBOOT_REQUIRED, code);
}

void InstallerSteps::Remove(const std::string& step, const std::filesystem::path& package)
{
    const std::optional<unsigned long> code = RunInstaller(L"/x", package);
    Add(step, code == ERROR_SUCCESS || code == ERROR_SUCCESS_REBOOT_REQUIRED, code);
}

bool InstallerSteps::Succeed(const std::string& step, const std::vector<std::wstring>& words)
{
    const std::optional<unsigned long> code = Run(words);
    return Add(step, code == 0UL, code);
}

void InstallerSteps::Expect(const std::string& step, bool isTrue)
{
    report.Add(isTrue ? Verdict::Passed : Verdict::Differs, step);
}

std::optional<unsigned long> InstallerSteps::Run(const std::vector<std::wstring>& words)
{
    return RunLogged(words, secondsForEach, logs / ("step " + std::to_string(++count) + ".txt"));
}

std::optional<unsigned long> InstallerSteps::RunInstaller(const wchar_t* option,
                                                          const std::filesystem::path& package,
                                                          const std::vector<std::wstring>& properties)
{
    const std::filesystem::path log = logs / ("step " + std::to_string(count + 1) + " msiexec.txt");
    std::vector<std::wstring> words = {L"msiexec.exe", option,  package.wstring(), L"/qn",
                                       L"/norestart",  L"/l*v", log.wstring()};
    words.insert(words.end(), properties.begin(), properties.end());
    const std::optional<unsigned long> code = Run(words);
    needsRestart = needsRestart || code == ERROR_SUCCESS_REBOOT_REQUIRED;
    return code;
}

bool InstallerSteps::Add(const std::string& step, bool isExpected, const std::optional<unsigned long>& code)
{
    std::string detail = code ? "exit code " + std::to_string(*code)
                              : "not done after " + std::to_string(secondsForEach) + " s";
    if (!isExpected)
        detail += "; see logs, step " + std::to_string(count);
    report.Add(isExpected ? Verdict::Passed : Verdict::Differs, step, {detail});
    return isExpected;
}
