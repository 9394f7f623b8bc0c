#pragma once

#include <windows.h>

#include <string>

/// A process that has taken the mutex of the HDF5 library and holds it until it is let go.
class HolderProcess
{
public:
    /// Starts mutex_holder with this option, and waits until it holds the mutex.
    explicit HolderProcess(const std::wstring& option = {});
    HolderProcess(const HolderProcess&) = delete;
    HolderProcess& operator=(const HolderProcess&) = delete;
    ~HolderProcess();

    /// Lets the process end, and waits for that.
    void LetGo() const;

private:
    HANDLE held = CreateEventW(nullptr, TRUE, FALSE, L"LumoraTest_Held");
    HANDLE letGo = CreateEventW(nullptr, TRUE, FALSE, L"LumoraTest_LetGo");
    PROCESS_INFORMATION process = {};
};
