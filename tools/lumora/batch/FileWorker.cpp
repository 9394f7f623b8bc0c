#include "lumora/batch/FileWorker.h"

#include "lumora/console/Failure.h"
#include "lumora/files/FileSystem.h"
#include "lumora/pictures/PictureFile.h"
#include "lumora/pictures/PictureMaker.h"

#include <chrono>

namespace Lumora {

FileReport FileWorker::Do(const FileTask& task)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    FileReport report = Try(task);
    if (report.failure && !report.lines.empty())
        *report.failure += L"; the reader noted \"" + report.lines.back() + L"\"";
    report.milliseconds = static_cast<uint32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin).count());
    return report;
}

FileReport FileWorker::Try(const FileTask& task)
{
    FileReport report;
    report.fileSize = FileSize(task.path);
    report.failure = FailureOf([&] {
        if (task.pictures)
            MakePictures(imaging, task.path, *task.pictures, report.pictures);
        if (task.thumbnailSide)
        {
            const Box box = {*task.thumbnailSide, *task.thumbnailSide};
            report.thumbnail = CopyOf(*PictureFile(imaging, task.path).Frame(0, box));
        }
    });
    if (task.wantsProperties)
    {
        const std::optional<std::wstring> failure =
            FailureOf([&] { report.properties = ReadProperties(imaging, task.path); });
        if (!report.failure)
            report.failure = failure;
    }
    report.lines = decoderLines.Take();
    return report;
}

} // namespace Lumora
