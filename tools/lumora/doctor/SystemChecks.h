#pragma once

#include "lumora/arguments/CommandLine.h"
#include "lumora/doctor/Diagnosis.h"
#include "lumora/files/FileSource.h"

#include <memory>

namespace Lumora {

/// What doctor looks at on this system.
class SystemChecks
{
public:
    /// Checks all that does not concern a single file.
    SystemChecks(const CommandLine& line, Diagnosis& diagnosis);
    SystemChecks(const SystemChecks&) = delete;
    SystemChecks& operator=(const SystemChecks&) = delete;
    ~SystemChecks();

    void CheckFile(const SourceFile& file, Diagnosis& diagnosis) const;

    /// What doctor says when nothing is wrong, and no file was named.
    static const wchar_t* const allIsWell;
    /// The same after files were looked at.
    static const wchar_t* const allFilesAreWell;

private:
    struct Means;
    const std::unique_ptr<Means> means;
};

} // namespace Lumora
