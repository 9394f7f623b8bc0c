#include "windows/walk/Report.h"

#include <cstdio>
#include <stdexcept>

namespace {

constexpr std::array<const char*, 4> words = {"passed", "differs", "not checked", "look"};

/// The beginning of a step's line.
std::string Beginning(size_t verdict)
{
    std::string word = words.at(verdict);
    word.resize(13, ' ');
    return word;
}

} // namespace

Report::Report(const std::filesystem::path& file) : file(file, std::ios::binary)
{
    if (!this->file)
        throw std::runtime_error("cannot write " + file.string());
}

void Report::Note(const std::string& text)
{
    std::puts(text.c_str());
    std::fflush(stdout);
    file << text << "\r\n" << std::flush;
}

void Report::Add(Verdict verdict, const std::string& step, const std::vector<std::string>& details)
{
    ++counts.at(static_cast<size_t>(verdict));
    Note(Beginning(static_cast<size_t>(verdict)) + step);
    for (const std::string& detail : details)
        Note(std::string(15, ' ') + detail);
}

void Report::AddDifferences(const std::string& step, const std::vector<std::string>& differences)
{
    Add(differences.empty() ? Verdict::Passed : Verdict::Differs, step, differences);
}

void Report::AddPart(const std::filesystem::path& part)
{
    std::ifstream lines{part, std::ios::binary};
    for (std::string line; std::getline(lines, line);)
    {
        for (size_t verdict = 0; verdict < words.size(); ++verdict)
            counts.at(verdict) += line.starts_with(Beginning(verdict)) ? 1 : 0;
        Note(line.substr(0, line.find('\r')));
    }
}

void Report::AddTotal()
{
    std::string total = "\r\nTotal:";
    for (size_t verdict = 0; verdict < words.size(); ++verdict)
        total += (verdict == 0 ? " " : ", ") + std::to_string(counts.at(verdict)) + ' ' + words.at(verdict);
    Note(total);
}
