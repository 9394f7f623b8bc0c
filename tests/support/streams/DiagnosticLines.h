#pragma once

#include "support/BytesAndLines.h"

/// Collects the lines that this thread writes to the debugger output while it lives. One at a time.
class DiagnosticLines
{
public:
    DiagnosticLines();
    DiagnosticLines(const DiagnosticLines&) = delete;
    DiagnosticLines& operator=(const DiagnosticLines&) = delete;
    ~DiagnosticLines();

    /// The lines since the last call, in order; only ASCII is expected in them.
    [[nodiscard]] Lines Take();
};
