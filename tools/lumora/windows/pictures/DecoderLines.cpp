#include "lumora/pictures/DecoderLines.h"

#include <windows.h>

#include <string_view>
#include <utility>

namespace Lumora {

namespace {

/// What the object of this thread has collected; null for a thread that has none.
thread_local std::vector<std::wstring>* collected = nullptr;

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
    if (collected)
        collected->push_back(FromAnsi(line));
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

DecoderLines::DecoderLines() : handler(AddVectoredExceptionHandler(1, CollectLine))
{
    collected = &lines;
}

DecoderLines::~DecoderLines()
{
    collected = nullptr;
    RemoveVectoredExceptionHandler(handler);
}

std::vector<std::wstring> DecoderLines::Take()
{
    return std::exchange(lines, {});
}

bool DecoderLines::ForgetLast(std::wstring_view line)
{
    if (!collected || collected->empty() || collected->back() != line)
        return false;
    collected->pop_back();
    return true;
}

} // namespace Lumora
