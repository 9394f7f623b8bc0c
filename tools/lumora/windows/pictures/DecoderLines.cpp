#include "lumora/pictures/DecoderLines.h"

#include <windows.h>

#include <string_view>

namespace Lumora {

namespace {

std::wstring FromAnsi(std::string_view text)
{
    const auto length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<size_t>(needed), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), needed);
    return wide;
}

/// Without a debugger, each line arrives as an exception that carries its text in the ANSI code page. Other
/// components write lines too.
LONG CALLBACK CollectLine(EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if (record.ExceptionCode != DBG_PRINTEXCEPTION_C || record.NumberParameters < 2)
        return EXCEPTION_CONTINUE_SEARCH;
    // Exceptions carry their addresses as numbers.
    const auto* const text = reinterpret_cast<const char*>( // NOLINT(performance-no-int-to-ptr)
        record.ExceptionInformation[1]);
    const std::string_view line = text;
    if (!line.starts_with("[Lumora] "))
        return EXCEPTION_CONTINUE_SEARCH;
    DecoderLines::Add(FromAnsi(line));
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

void DecoderLines::Listen()
{
    handler = AddVectoredExceptionHandler(1, CollectLine);
}

void DecoderLines::StopListening() noexcept
{
    RemoveVectoredExceptionHandler(handler);
}

} // namespace Lumora
