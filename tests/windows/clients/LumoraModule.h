#pragma once

#include "platform/ComPtr.h"

#include <windows.h>

#include <objbase.h>

#include <filesystem>

/// A loaded Lumora.dll and what it exports.
class LumoraModule
{
public:
    /// The DLL beside this program, loaded once for all tests.
    [[nodiscard]] static LumoraModule& Shared();
    /// Where that DLL lies.
    [[nodiscard]] static std::filesystem::path File();

    explicit LumoraModule(const std::filesystem::path& file);
    LumoraModule(const LumoraModule&) = delete;
    LumoraModule& operator=(const LumoraModule&) = delete;
    ~LumoraModule();

    /// A new object of the class; empty, after a test failure, when the module gives none.
    template <typename Interface>
    [[nodiscard]] ComPtr<Interface> Create(REFCLSID rclsid, REFIID riid) const
    {
        ComPtr<Interface> object;
        CreateObject(rclsid, riid, object.PutVoid());
        return object;
    }

    HMODULE handle = nullptr;
    HRESULT(WINAPI* dllGetClassObject)(REFCLSID rclsid, REFIID riid, void** ppv) = nullptr;
    HRESULT(WINAPI* dllCanUnloadNow)() = nullptr;
    HRESULT(WINAPI* dllRegisterServer)() = nullptr;
    HRESULT(WINAPI* dllUnregisterServer)() = nullptr;

private:
    void CreateObject(REFCLSID rclsid, REFIID riid, void** object) const;
};

/// A copy of the DLL under a name of its own: Windows loads it as another module, whose counters start anew.
class FreshLumoraModule
{
    struct CopiedFile
    {
        CopiedFile();
        ~CopiedFile();
        std::filesystem::path path;
    };

    // Declared before the module, so that the file is deleted after the module has left it.
    CopiedFile copy;

public:
    LumoraModule* operator->() { return &module; }

private:
    LumoraModule module{copy.path};
};
