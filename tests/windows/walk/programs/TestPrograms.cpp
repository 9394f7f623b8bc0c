#include "windows/walk/programs/TestPrograms.h"

#include "support/ProgramFolder.h"
#include "windows/walk/package/InstalledProduct.h"
#include "windows/walk/programs/LoggedProgram.h"
#include "windows/walk/programs/TestLog.h"

#include <chrono>
#include <span>

namespace {

struct TestProgram
{
    /// The name of its log.
    const char* step;
    const char* program;
    const char* filter;
    /// Several times as long as it has ever taken.
    unsigned seconds;
    /// It needs an administrator, and would replace what is registered already.
    bool registers;
};

// The tests without the mutex must run before any process has created the mutex of the HDF5 library.
constexpr TestProgram everything[] = {
    {"process_tests (no mutex)", "process_tests", "HdfMissingMutex.*", 120, false},
    {"process_tests", "process_tests", "-HdfMissingMutex.*", 600, false},
    {"unit_tests", "unit_tests", "*", 1800, false},
    {"com_tests", "com_tests", "*", 900, false},
    {"registration_tests", "registration_tests", "*", 600, true},
    {"whole_path_tests", "whole_path_tests", "*", 600, true},
    {"tool_tests", "tool_tests", "*", 1800, true},
};

// Enough to see that every program finds its files.
constexpr TestProgram aQuickPart[] = {
    {"unit_tests (part)", "unit_tests", "MrcWriterFiles.*:NpyWriterFiles.*:HdfWriterFiles.AreRefused*", 120,
     false},
    {"com_tests (part)", "com_tests", "DllFile.*:SampleReentry.*", 120, false},
    {"registration_tests (part)", "registration_tests", "Registration.Binds*:Registration.LeavesNothing*",
     120, true},
    {"whole_path_tests (all)", "whole_path_tests", "*", 120, true},
    {"tool_tests (part)", "tool_tests", "SamplePictures.AreWhat*:Of/ToolTranscript.*/usage", 120, true},
};

std::string Ending(const std::optional<unsigned long>& exitCode, unsigned seconds)
{
    return exitCode ? "exit code " + HexCode(*exitCode) + '.'
                    : "Not done after " + std::to_string(seconds) + " s.";
}

void Run(Report& report, const Host& host, const std::filesystem::path& logs, const TestProgram& test)
{
    const std::string step = test.step;
    if (test.registers && (!host.isElevated || IsLumoraThere()))
    {
        report.Add(
            Verdict::NotChecked, step,
            {host.isElevated ? "there is a Lumora already; remove it first" : "it needs an administrator"});
        return;
    }
    const std::filesystem::path log = logs / (step + ".txt");
    const auto start = std::chrono::steady_clock::now();
    const std::optional<unsigned long> exitCode =
        RunLogged({(ProgramFolder() / test.program).concat(L".exe").wstring(),
                   L"--gtest_filter=" + std::filesystem::path(test.filter).wstring()},
                  test.seconds, log);
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start).count();

    const TestLog printed(log);
    std::vector<std::string> details;
    for (const std::string& name : printed.failed)
        details.push_back("failed: " + name);
    for (const std::string& name : printed.skipped)
        details.push_back("skipped: " + name);
    const bool hasPassed = exitCode == 0UL && printed.failed.empty() && !printed.passed.empty();
    details.push_back((hasPassed ? printed.passed : Ending(exitCode, test.seconds)) + ' ' +
                      std::to_string(seconds) + " s");
    report.Add(hasPassed ? Verdict::Passed : Verdict::Differs, step, details);
}

} // namespace

void RunTestPrograms(Report& report, const Host& host, const std::filesystem::path& logs, bool isQuick)
{
    for (const TestProgram& test : isQuick ? std::span<const TestProgram>(aQuickPart) : everything)
        Run(report, host, logs, test);
}
