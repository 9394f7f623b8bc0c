#pragma once

#include "windows/walk/Report.h"

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

/// Runs programs as steps of a report, with a log for each, and compares how they end with what is expected.
class InstallerSteps
{
public:
    InstallerSteps(Report& report, std::filesystem::path logs);

    /// Has the installer do this with a package, silently. Whether it ended with one of the codes. A property
    /// such as L"WITHOUT=.map" has no spaces: the installer would not understand it in quotes.
    bool Install(const std::string& step, const std::filesystem::path& package,
                 std::initializer_list<unsigned long> codes = {0},
                 const std::vector<std::wstring>& properties = {});

    /// The installer must refuse. With which code is its own affair.
    void Refuse(const std::string& step, const std::filesystem::path& package);

    /// Removes what a package has installed.
    void Remove(const std::string& step, const std::filesystem::path& package);

    /// Whether a program ended with 0.
    bool Succeed(const std::string& step, const std::vector<std::wstring>& words);

    /// A step without a program.
    void Expect(const std::string& step, bool isTrue);

    /// Whether a file that was in use is replaced or deleted at the next restart only.
    [[nodiscard]] bool NeedsRestart() const { return needsRestart; }

private:
    /// The exit code; nothing if the program does not end.
    std::optional<unsigned long> Run(const std::vector<std::wstring>& words);
    std::optional<unsigned long> RunInstaller(const wchar_t* option, const std::filesystem::path& package,
                                              const std::vector<std::wstring>& properties = {});
    bool Add(const std::string& step, bool isExpected, const std::optional<unsigned long>& code);

    Report& report;
    std::filesystem::path logs;
    /// Of the programs that were run.
    unsigned count = 0;
    bool needsRestart = false;
};
