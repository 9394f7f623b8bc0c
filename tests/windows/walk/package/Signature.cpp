#include "windows/walk/package/Signature.h"

#include "lumora/doctor/Signature.h"
#include "windows/walk/Host.h"

void CheckSignature(Report& report, const std::filesystem::path& file)
{
    const std::string step = "signature of " + Utf8(file.filename());
    const Lumora::Signature signature = Lumora::SignatureOf(file);
    if (signature.signer.empty())
        report.Add(Verdict::NotChecked, step, {"the file is not signed"});
    else if (signature.doubt.empty())
        report.Add(Verdict::Passed, step, {Utf8(signature.signer)});
    else
        report.Add(Verdict::Differs, step, {Utf8(signature.signer), Utf8(signature.doubt)});
}
