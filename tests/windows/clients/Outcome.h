#pragma once

#include "support/streams/DiagnosticLines.h"

#include <windows.h>

#include <exception>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

/// How a call ended: with a result or with an exception, and with what it wrote for the debugger.
struct Outcome
{
    HRESULT result = S_OK;
    std::vector<std::string> lines{};
    /// Kind and text of the exception that left the call; empty when there was none.
    std::string exception{};

    bool operator==(const Outcome&) const = default;
};

/// Shows an outcome where a test fails.
inline std::ostream& operator<<(std::ostream& output, const Outcome& outcome)
{
    output << "result " << std::hex << static_cast<unsigned long>(outcome.result) << std::dec;
    for (const std::string& line : outcome.lines)
        output << ", \"" << line << '"';
    return output << (outcome.exception.empty() ? "" : ", exception ") << outcome.exception;
}

/// Makes a call that gives an HRESULT, on this thread.
template <typename Call>
[[nodiscard]] Outcome OutcomeOf(Call&& call)
{
    Outcome outcome;
    DiagnosticLines diagnostics;
    try
    {
        outcome.result = call();
    }
    catch (const std::runtime_error& error)
    {
        outcome.exception = std::string("runtime_error: ") + error.what();
    }
    catch (const std::bad_alloc&)
    {
        outcome.exception = "bad_alloc";
    }
    catch (const std::exception& error)
    {
        outcome.exception = std::string("unexpected: ") + error.what();
    }
    outcome.lines = diagnostics.Take();
    return outcome;
}
