#include "lumora/batch/Conversation.h"

#include "lumora/batch/FileWorker.h"
#include "lumora/batch/Message.h"
#include "lumora/batch/Pipe.h"

#include <utility>

namespace Lumora {

namespace {

std::vector<uint8_t> Answer(FileWorker& worker, std::vector<uint8_t> message)
{
    FileTask task;
    MessageReader reader(std::move(message));
    reader.Field(task);
    FileReport report = worker.Do(task);
    MessageWriter writer;
    writer.Field(report);
    return writer.Take();
}

} // namespace

std::optional<FileReport> Ask(ByteFile& tasks, ByteFile& reports, FileTask& task)
{
    MessageWriter writer;
    writer.Field(task);
    if (!SendTo(tasks, writer.Take()))
        return std::nullopt;
    std::optional<std::vector<uint8_t>> message = ReceiveFrom(reports);
    if (!message)
        return std::nullopt;
    MessageReader reader(std::move(*message));
    FileReport report;
    reader.Field(report);
    return report;
}

void AnswerAll()
{
    ByteFile tasks = ByteFile::StandardInput();
    ByteFile reports = ByteFile::StandardOutput();
    FileWorker worker;
    while (std::optional<std::vector<uint8_t>> message = ReceiveFrom(tasks))
    {
        if (!SendTo(reports, Answer(worker, std::move(*message))))
            break;
    }
}

} // namespace Lumora
