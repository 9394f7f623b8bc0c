#pragma once

#include "lumora/batch/FileReport.h"
#include "lumora/batch/FileTask.h"
#include "lumora/pictures/DecoderLines.h"
#include "lumora/pictures/Imaging.h"

namespace Lumora {

/// Works on one file after the other, on the thread that has made it.
class FileWorker
{
public:
    /// Does all that the task asks for. What goes wrong with the file is in the report, with the reader's
    /// last line if there is one.
    [[nodiscard]] FileReport Do(const FileTask& task);

private:
    [[nodiscard]] FileReport Try(const FileTask& task);

    Imaging imaging;
    DecoderLines decoderLines;
};

} // namespace Lumora
