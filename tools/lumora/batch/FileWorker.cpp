#include "lumora/batch/FileWorker.h"

#include "lumora/console/Failure.h"
#include "lumora/files/FileSystem.h"
#include "lumora/pictures/PictureFile.h"
#include "lumora/pictures/PictureMaker.h"
#include "lumora/pictures/PropertyReader.h"
#include "lumora/windows/pictures/ImagingFactory.h"

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
            MakePictures(Factory(), task.path, *task.pictures, report.pictures);
        if (task.thumbnailSide)
        {
            const Box box = {*task.thumbnailSide, *task.thumbnailSide};
            report.thumbnail = CopyOf(*PictureFile(Factory(), task.path).Frame(0, box).Get());
        }
    });
    if (task.wantsProperties)
    {
        const std::optional<std::wstring> failure =
            FailureOf([&] { report.properties = ReadProperties(task.path); });
        if (!report.failure)
            report.failure = failure;
    }
    report.lines = decoderLines.Take();
    return report;
}

IWICImagingFactory& FileWorker::Factory()
{
    if (!factory)
        factory = MakeImagingFactory();
    return *factory.Get();
}

} // namespace Lumora
