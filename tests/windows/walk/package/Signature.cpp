#include "windows/walk/package/Signature.h"

#include "lumora/windows/doctor/Signature.h"
#include "windows/walk/Host.h"

void CheckSignature(Report& report, const std::filesystem::path& file)
{
    const std::string step = "signature of " + Utf8(file.filename());
    const Lumora::Signature signature = Lumora::SignatureOf(file);
    if (!signature.doubt.empty())
        report.Add(Verdict::Differs, step, {Utf8(signature.Words())});
    else
        report.Add(signature.signer.empty() ? Verdict::NotChecked : Verdict::Passed, step,
                   {Utf8(signature.Words())});
}
