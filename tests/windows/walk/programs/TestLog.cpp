#include "windows/walk/programs/TestLog.h"

#include <fstream>

namespace {

/// The text behind the beginning, without the end of the line; empty if the line begins otherwise.
std::string Behind(const std::string& line, const std::string& beginning)
{
    if (!line.starts_with(beginning))
        return {};
    return line.substr(beginning.size(), line.find('\r') - beginning.size());
}

} // namespace

TestLog::TestLog(const std::filesystem::path& log)
{
    std::ifstream lines{log, std::ios::binary};
    for (std::string line; std::getline(lines, line);)
    {
        // The list at the end names each test once, without a time, below a line with their number.
        const bool isInList =
            line.find(" ms)") == std::string::npos && line.find(", listed below:") == std::string::npos;
        if (const std::string text = Behind(line, "[  PASSED  ] "); !text.empty())
            passed = text;
        else if (const std::string test = Behind(line, "[  FAILED  ] "); !test.empty() && isInList)
            failed.push_back(test);
        else if (const std::string other = Behind(line, "[  SKIPPED ] "); !other.empty() && isInList)
            skipped.push_back(other);
    }
}
