#pragma once

#include <windows.h>

#include <string>

/// What Windows says about a result or an error code; empty when it says nothing.
[[nodiscard]] std::wstring SystemText(DWORD code);
