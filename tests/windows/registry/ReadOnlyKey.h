#pragma once

#include <windows.h>

#include <string>

/// A key of the machine's in which nothing can be changed while this lives.
class ReadOnlyKey
{
public:
    explicit ReadOnlyKey(const std::wstring& path);
    ReadOnlyKey(const ReadOnlyKey&) = delete;
    ReadOnlyKey& operator=(const ReadOnlyKey&) = delete;
    ~ReadOnlyKey();

private:
    void Allow(const wchar_t* rights);

    HKEY key = nullptr;
};
