#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Lumora {

enum class CheckState
{
    Ok,
    Note,
    Problem,
};

/// What one check has found.
struct Check
{
    std::wstring what;
    CheckState state;
    std::wstring detail;
};

/// The checks that concern one file.
struct FileChecks
{
    std::wstring name;
    std::vector<Check> checks;
};

/// Why something is wrong, the most fundamental cause first. While a cause exists, fixing a later one does
/// not help, or the later one cannot be found.
enum class Cause
{
    Processor,
    UnreadableRegistry,
    UnusableDll,
    NoRegistration,
    RegisteredDll,
    OtherDll,
    IncompleteRegistration,
    HidingRegistration,
    Class,
    Explorer,
    NoThumbnailer,
    KindsOfFiles,
    Extension,
    FailedBefore,
    File,
};

/// Collects the checks, and the advice of the most fundamental of them.
class Diagnosis
{
public:
    /// All checks from now on concern this file.
    void BeginFile(const std::wstring& name);

    void Ok(const wchar_t* what, const std::wstring& detail);
    /// Something that is allowed. The advice, if there is one, is used if nothing is wrong.
    void Note(const wchar_t* what, const std::wstring& detail, const std::wstring& advice = {});
    /// Something that is wrong, with advice in a sentence or two.
    void Problem(Cause cause, const wchar_t* what, const std::wstring& detail, const std::wstring& advice);

    [[nodiscard]] bool IsAllWell() const noexcept { return !worst; }

    /// The advice for the most fundamental problem, or for the first note that has one.
    [[nodiscard]] const std::wstring& Advice() const noexcept { return advice; }

    [[nodiscard]] const std::vector<Check>& Checks() const noexcept { return checks; }
    [[nodiscard]] const std::vector<FileChecks>& Files() const noexcept { return files; }

private:
    void Add(Check check);

    std::vector<Check> checks;
    std::vector<FileChecks> files;
    std::optional<Cause> worst;
    std::wstring advice;
};

/// The first of the names, and how many more there are.
[[nodiscard]] std::wstring FirstOf(const std::vector<std::wstring>& names);

} // namespace Lumora
