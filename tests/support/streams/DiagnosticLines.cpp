#include "support/streams/DiagnosticLines.h"

#include "platform/Platform.h"

#include <string_view>
#include <utility>

namespace {

thread_local Lines collected;

#ifdef _WIN32

PVOID handler = nullptr;

/// Without a debugger, each line arrives as an exception that carries its text in the ANSI code page.
LONG CALLBACK CollectLine(EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if (record.ExceptionCode != DBG_PRINTEXCEPTION_C)
        return EXCEPTION_CONTINUE_SEARCH;
    // The test framework tells the debugger of failures as well, in texts with line ends. Ours have none.
    const std::string_view line = reinterpret_cast<const char*>(record.ExceptionInformation[1]);
    if (line.find('\n') == std::string_view::npos)
        collected.emplace_back(line);
    return EXCEPTION_CONTINUE_EXECUTION;
}

#else

void CollectLine(const wchar_t* line)
{
    const std::wstring wide = line;
    std::string text;
    for (const wchar_t character : wide)
        text.push_back(static_cast<char>(character));
    collected.push_back(std::move(text));
}

#endif

} // namespace

DiagnosticLines::DiagnosticLines()
{
    collected.clear();
#ifdef _WIN32
    handler = AddVectoredExceptionHandler(1, CollectLine);
#else
    SetDebugStringSink(CollectLine);
#endif
}

DiagnosticLines::~DiagnosticLines()
{
#ifdef _WIN32
    RemoveVectoredExceptionHandler(handler);
#else
    SetDebugStringSink(nullptr);
#endif
}

Lines DiagnosticLines::Take()
{
    return std::exchange(collected, {});
}
