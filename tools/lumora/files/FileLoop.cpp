#include "lumora/files/FileLoop.h"

#include "lumora/console/Failure.h"
#include "lumora/console/Progress.h"
#include "lumora/pictures/DecoderLines.h"

namespace Lumora {

int ForEachFile(const FileList& list, const CommandLine& line, Console& console,
                const std::function<void(const SourceFile&)>& work,
                const std::function<void(const SourceFile&, const std::optional<std::wstring>&)>& whenDone)
{
    size_t failures = list.failures;
    DecoderLines decoderLines;
    Progress progress(console, list.files.size());
    for (const SourceFile& file : list.files)
    {
        progress.Next(file.name);
        std::optional<std::wstring> failure = FailureOf([&] { work(file); });
        const std::vector<std::wstring> lines = decoderLines.Take();
        if (line.isVerbose)
        {
            for (const std::wstring& note : lines)
                console.Complain(file.name + L": " + note);
        }
        if (failure)
        {
            ++failures;
            if (!lines.empty())
                *failure += L"; the reader noted \"" + lines.back() + L"\"";
            console.Complain(L"lumora: " + file.name + L": " + *failure);
        }
        if (whenDone)
            whenDone(file, failure);
    }
    return failures == 0 ? 0 : 1;
}

} // namespace Lumora
