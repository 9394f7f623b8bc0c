#include "lumora/doctor/SystemChecks.h"

#include "lumora/doctor/OpeningChecks.h"
#include "lumora/windows/doctor/ClassChecks.h"
#include "lumora/windows/doctor/ExplorerChecks.h"
#include "lumora/windows/doctor/RegistrationChecks.h"

namespace Lumora {

const wchar_t* const SystemChecks::allIsWell = L"All is well: Windows finds Lumora, and Lumora starts.";
const wchar_t* const SystemChecks::allFilesAreWell =
    L"All is well: Windows finds Lumora, and Lumora opens what was named. A folder that was open before may "
    L"need a press of F5.";

struct SystemChecks::Means
{
    Imaging imaging;
    RegistrationFindings findings;
    bool isDecoderKnown = false;
};

SystemChecks::SystemChecks(const CommandLine& line, Diagnosis& diagnosis) : means(std::make_unique<Means>())
{
    CheckProcessor(diagnosis);
    means->findings = CheckRegistrations(line.dllPath, diagnosis);
    if (means->findings.isUsable)
        means->isDecoderKnown = CheckClasses(means->imaging, means->findings.scope, diagnosis);
    CheckExplorerSettings(diagnosis);
}

SystemChecks::~SystemChecks() = default;

void SystemChecks::CheckFile(const SourceFile& file, Diagnosis& diagnosis) const
{
    if (means->findings.isRegistered)
        CheckExtension(file.name, means->findings, diagnosis);
    if (means->isDecoderKnown)
        CheckOpening(means->imaging, file, diagnosis);
    else
        diagnosis.Note(L"picture", L"not looked at, as Lumora does not start");
}

} // namespace Lumora
