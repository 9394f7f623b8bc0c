#include "windows/support/PortableExecutable.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

/// One entry of the table of delayed imports, as far as it is read here.
struct DelayImport
{
    DWORD attributes;
    DWORD nameAddress;
    DWORD others[6];
};

} // namespace

PortableExecutable::PortableExecutable(const std::filesystem::path& file)
{
    std::ifstream input(file, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(input), {});

    const auto dosHeader = At<IMAGE_DOS_HEADER>(0);
    const auto headers = static_cast<size_t>(dosHeader.e_lfanew);
    if (dosHeader.e_magic != IMAGE_DOS_SIGNATURE || At<DWORD>(headers) != IMAGE_NT_SIGNATURE)
        throw std::runtime_error("This is no program file");
    fileHeader = At<IMAGE_FILE_HEADER>(headers + sizeof(DWORD));
    const size_t optional = headers + sizeof(DWORD) + sizeof(IMAGE_FILE_HEADER);
    optionalHeader = At<IMAGE_OPTIONAL_HEADER64>(optional);
    if (optionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC)
        throw std::runtime_error("This is no 64-bit program file");
    for (size_t i = 0; i < fileHeader.NumberOfSections; ++i)
        sections.push_back(At<IMAGE_SECTION_HEADER>(optional + fileHeader.SizeOfOptionalHeader +
                                                    i * sizeof(IMAGE_SECTION_HEADER)));
}

std::vector<std::string> PortableExecutable::ExportedNames() const
{
    std::vector<std::string> names;
    const auto table =
        AtAddress<IMAGE_EXPORT_DIRECTORY>(Directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
    for (DWORD i = 0; i < table.NumberOfNames; ++i)
        names.push_back(TextAt(AtAddress<DWORD>(table.AddressOfNames + i * DWORD{sizeof(DWORD)})));
    return names;
}

DWORD PortableExecutable::ExportedFunctions() const
{
    return AtAddress<IMAGE_EXPORT_DIRECTORY>(Directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress)
        .NumberOfFunctions;
}

std::vector<std::string> PortableExecutable::ImportedModules() const
{
    // Both tables end with an entry of zeros.
    std::vector<std::string> names;
    DWORD address = Directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress;
    for (; address && AtAddress<IMAGE_IMPORT_DESCRIPTOR>(address).Name;
         address += DWORD{sizeof(IMAGE_IMPORT_DESCRIPTOR)})
        names.push_back(TextAt(AtAddress<IMAGE_IMPORT_DESCRIPTOR>(address).Name));
    address = Directory(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT).VirtualAddress;
    for (; address && AtAddress<DelayImport>(address).nameAddress; address += DWORD{sizeof(DelayImport)})
        names.push_back(TextAt(AtAddress<DelayImport>(address).nameAddress));
    return names;
}

const IMAGE_DATA_DIRECTORY& PortableExecutable::Directory(DWORD entry) const
{
    if (entry >= std::min<DWORD>(optionalHeader.NumberOfRvaAndSizes, IMAGE_NUMBEROF_DIRECTORY_ENTRIES))
        throw std::runtime_error("The file has no such table");
    return optionalHeader.DataDirectory[entry];
}

template <typename Structure>
Structure PortableExecutable::At(size_t offset) const
{
    if (offset > bytes.size() || bytes.size() - offset < sizeof(Structure))
        throw std::runtime_error("A table of the program file leaves the file");
    Structure structure;
    std::memcpy(&structure, bytes.data() + offset, sizeof(structure));
    return structure;
}

template <typename Structure>
Structure PortableExecutable::AtAddress(DWORD relativeAddress) const
{
    return At<Structure>(OffsetOf(relativeAddress));
}

size_t PortableExecutable::OffsetOf(DWORD relativeAddress) const
{
    for (const IMAGE_SECTION_HEADER& section : sections)
    {
        if (relativeAddress >= section.VirtualAddress &&
            relativeAddress - section.VirtualAddress < section.SizeOfRawData)
            return size_t{relativeAddress} - section.VirtualAddress + section.PointerToRawData;
    }
    throw std::runtime_error("No section of the program file holds this address");
}

std::string PortableExecutable::TextAt(DWORD relativeAddress) const
{
    std::string text;
    for (size_t offset = OffsetOf(relativeAddress); At<char>(offset) != '\0'; ++offset)
        text.push_back(At<char>(offset));
    return text;
}
