#include "support/TestFolders.h"

#include "support/ProgramFolder.h"

#include <fstream>
#include <stdexcept>
#include <string>

std::filesystem::path TestFolder(std::string_view name)
{
    const std::filesystem::path list = ProgramFolder() / "test-folders.txt";
    const std::string beginning = std::string(name) + ' ';
    std::ifstream lines{list};
    for (std::string line; std::getline(lines, line);)
    {
        if (!line.starts_with(beginning))
            continue;
        const std::string folder = line.substr(beginning.size());
        return folder.empty() ? std::filesystem::path{} : (ProgramFolder() / folder).lexically_normal();
    }
    throw std::runtime_error(list.string() + " has no line of the folder " + std::string(name));
}
