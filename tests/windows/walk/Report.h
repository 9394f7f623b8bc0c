#pragma once

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

/// What came of a step.
enum class Verdict
{
    Passed,
    Differs,
    /// The details say why.
    NotChecked,
    /// A person has to look.
    Look,
};

/// One file of all steps. Each step is written, and printed, as soon as it is known, so a report exists even
/// if the program does not reach its end.
class Report
{
public:
    /// Replaces the file. Throws std::runtime_error if it cannot be written.
    explicit Report(const std::filesystem::path& file);

    /// Adds a line without a verdict.
    void Note(const std::string& text);

    /// Adds a step, with one line for each detail.
    void Add(Verdict verdict, const std::string& step, const std::vector<std::string>& details = {});

    /// Adds a step that differs if there are details, and has passed otherwise.
    void AddDifferences(const std::string& step, const std::vector<std::string>& differences);

    /// Adds the steps of another report.
    void AddPart(const std::filesystem::path& part);

    /// Adds how often each verdict was given.
    void AddTotal();

    [[nodiscard]] bool HasDifferences() const { return counts[static_cast<size_t>(Verdict::Differs)] > 0; }

private:
    std::ofstream file;
    std::array<size_t, 4> counts{};
};
