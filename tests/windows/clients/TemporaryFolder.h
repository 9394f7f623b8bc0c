#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

/// A folder of its own for each test, deleted with what is in it.
class TemporaryFolder
{
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /// Writes a file below the folder and gives its path; its own folder is made.
    std::filesystem::path Write(const std::filesystem::path& name, std::span<const uint8_t> content) const;

    /// What a file holds; empty when it is not there.
    [[nodiscard]] std::vector<uint8_t> Read(const std::filesystem::path& name) const;

    /// Names of all files below the folder, sorted, with slashes.
    [[nodiscard]] std::vector<std::string> Files() const;

    [[nodiscard]] const std::filesystem::path& Path() const { return path; }

private:
    std::filesystem::path path;
};
