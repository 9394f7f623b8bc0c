#include "windows/support/ImportHook.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

/// The table of addresses is read-only once the module is loaded.
void Store(void** place, void* address)
{
    DWORD protection = 0;
    VirtualProtect(place, sizeof(*place), PAGE_READWRITE, &protection);
    *place = address;
    VirtualProtect(place, sizeof(*place), protection, &protection);
}

template <typename Structure>
Structure* At(HMODULE module, uint64_t relativeAddress)
{
    return reinterpret_cast<Structure*>(reinterpret_cast<uint8_t*>(module) + relativeAddress);
}

} // namespace

ImportHook::ImportHook(HMODULE module, const char* name, void* replacement)
{
    const auto headers = static_cast<uint64_t>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports =
        At<IMAGE_NT_HEADERS64>(module, headers)->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (const auto* dll = At<IMAGE_IMPORT_DESCRIPTOR>(module, imports.VirtualAddress); dll->Name; ++dll)
    {
        const auto* named = At<IMAGE_THUNK_DATA64>(module, dll->OriginalFirstThunk);
        auto* const addresses = At<void*>(module, dll->FirstThunk);
        for (size_t i = 0; named[i].u1.AddressOfData; ++i)
        {
            if (IMAGE_SNAP_BY_ORDINAL64(named[i].u1.Ordinal))
                continue;
            const char* const imported = At<IMAGE_IMPORT_BY_NAME>(module, named[i].u1.AddressOfData)->Name;
            if (std::string_view(imported) != name)
                continue;
            replaced.emplace_back(addresses + i, addresses[i]);
            Store(addresses + i, replacement);
        }
    }
    if (replaced.empty())
        throw std::runtime_error(std::string("The module does not import ") + name);
}

ImportHook::~ImportHook()
{
    for (const auto& [place, address] : replaced)
        Store(place, address);
}
