#pragma once

#include <windows.h>

#include <array>
#include <string>

/// Points the roots of the registry, for this process, at empty keys while it lives: nothing is found
/// there, and what is written goes with them.
class RegistrySandbox
{
public:
    RegistrySandbox();
    RegistrySandbox(const RegistrySandbox&) = delete;
    RegistrySandbox& operator=(const RegistrySandbox&) = delete;
    ~RegistrySandbox();

    /// False once a key or a value has been written below one of the roots.
    [[nodiscard]] bool IsEmpty() const;

private:
    std::wstring path;
    /// The keys that stand in for the roots.
    std::array<HKEY, 3> keys{};
};
