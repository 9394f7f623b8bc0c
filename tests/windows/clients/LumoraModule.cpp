#include "windows/clients/LumoraModule.h"

#include "support/ProgramFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <system_error>

namespace {

template <typename Function>
void Resolve(HMODULE module, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    if (!function)
        throw std::runtime_error(std::string("Lumora.dll does not export ") + name);
}

} // namespace

LumoraModule& LumoraModule::Shared()
{
    static LumoraModule module{File()};
    return module;
}

std::filesystem::path LumoraModule::File()
{
    return ProgramFolder() / L"Lumora.dll";
}

LumoraModule::LumoraModule(const std::filesystem::path& file) : handle(LoadLibraryW(file.c_str()))
{
    if (!handle)
        throw std::runtime_error("Cannot load " + file.string());
    Resolve(handle, "DllGetClassObject", dllGetClassObject);
    Resolve(handle, "DllCanUnloadNow", dllCanUnloadNow);
    Resolve(handle, "DllRegisterServer", dllRegisterServer);
    Resolve(handle, "DllUnregisterServer", dllUnregisterServer);
}

LumoraModule::~LumoraModule()
{
    FreeLibrary(handle);
}

void LumoraModule::CreateObject(REFCLSID rclsid, REFIID riid, void** object) const
{
    ComPtr<IClassFactory> factory;
    if (dllGetClassObject(rclsid, IID_IClassFactory, factory.PutVoid()) != S_OK ||
        factory->CreateInstance(nullptr, riid, object) != S_OK)
        ADD_FAILURE() << "Lumora.dll creates no object of this class";
}

FreshLumoraModule::CopiedFile::CopiedFile()
{
    std::array<wchar_t, MAX_PATH> name{};
    if (!GetTempFileNameW(std::filesystem::temp_directory_path().c_str(), L"lum", 0, name.data()))
        throw std::runtime_error("No name for a copy of Lumora.dll");
    path = name.data();
    // The standard library of mingw takes any two files of one drive for the same file, and does not copy it.
    if (!CopyFileW(LumoraModule::File().c_str(), path.c_str(), FALSE))
        throw std::runtime_error("Cannot copy Lumora.dll");
}

FreshLumoraModule::CopiedFile::~CopiedFile()
{
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}
