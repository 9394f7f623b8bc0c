#include "lumora/commands/RenderCommand.h"

#include "lumora/batch/Batch.h"
#include "lumora/batch/JsonLine.h"
#include "lumora/console/Interruption.h"
#include "lumora/files/OutputNames.h"
#include "lumora/pictures/Imaging.h"

namespace Lumora {

namespace {

/// What is the same for all files.
PictureOrder OrderOf(const CommandLine& line)
{
    PictureOrder order;
    order.frames = line.frames.value_or(line.isMontage ? FrameSelection::All() : FrameSelection());
    order.format = {line.isJpeg, line.quality.value_or(PictureFormat::usualQuality)};
    order.longerSide = line.longerSide;
    order.isMontage = line.isMontage;
    order.columns = line.columns;
    order.skipsExisting = line.skipsExisting;
    return order;
}

void PrintNames(Console& console, const FileReport& report)
{
    for (const PictureReport& picture : report.pictures)
    {
        if (!picture.isSkipped)
            console.Print(picture.name + L'\n');
    }
}

} // namespace

int RunRender(const CommandLine& line, Console& console)
{
    const Interruption interruption;
    Imaging().RequireDecoder();
    const PictureOrder order = OrderOf(line);
    OutputNames names(line.output.value_or(L""));
    return RunBatch(line, console,
                    {[&](const SourceFile& file) {
                         FileTask task;
                         task.path = file.path;
                         task.wantsProperties = line.wantsJsonLines;
                         task.pictures = order;
                         names.Claim(file, *task.pictures);
                         return task;
                     },
                     [&](const SourceFile& file, const FileReport& report) {
                         if (line.wantsJsonLines)
                             console.Print(JsonLine(file, report, true));
                         else
                             PrintNames(console, report);
                     },
                     0,
                     [&](const ShardMark& mark) {
                         if (line.wantsJsonLines)
                             console.Print(mark.Text() + L'\n');
                     }});
}

} // namespace Lumora
