#pragma once

#include <windows.h>

#include <utility>
#include <vector>

/// Makes a loaded module call another function in place of one that it imports, while the hook lives.
class ImportHook
{
public:
    /// Throws when the module does not import the function.
    template <typename Function>
    ImportHook(HMODULE module, const char* name, Function* replacement)
        : ImportHook(module, name, reinterpret_cast<void*>(replacement))
    {}
    ImportHook(HMODULE module, const char* name, void* replacement);
    ImportHook(const ImportHook&) = delete;
    ImportHook& operator=(const ImportHook&) = delete;
    ~ImportHook();

private:
    /// Where the module keeps the function's address, and what stood there.
    std::vector<std::pair<void**, void*>> replaced;
};
