#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// The headers and tables of a 64-bit program or DLL, read from the file itself and not from a loaded copy.
/// A file that is no such thing, or a table that leaves it, throws.
class PortableExecutable
{
public:
    explicit PortableExecutable(const std::filesystem::path& file);

    /// Names of the exported functions, in the order of the table.
    [[nodiscard]] std::vector<std::string> ExportedNames() const;
    /// Number of exported functions, those without a name included.
    [[nodiscard]] DWORD ExportedFunctions() const;
    /// Names of the DLLs that are loaded with the file or, delayed, at the first use.
    [[nodiscard]] std::vector<std::string> ImportedModules() const;
    [[nodiscard]] const IMAGE_DATA_DIRECTORY& Directory(DWORD entry) const;

    IMAGE_FILE_HEADER fileHeader{};
    IMAGE_OPTIONAL_HEADER64 optionalHeader{};

private:
    template <typename Structure>
    [[nodiscard]] Structure At(size_t offset) const;
    template <typename Structure>
    [[nodiscard]] Structure AtAddress(DWORD relativeAddress) const;
    [[nodiscard]] size_t OffsetOf(DWORD relativeAddress) const;
    [[nodiscard]] std::string TextAt(DWORD relativeAddress) const;

    std::vector<uint8_t> bytes;
    std::vector<IMAGE_SECTION_HEADER> sections;
};
