#include "lumora/commands/InfoCommand.h"

#include "lumora/batch/Batch.h"
#include "lumora/batch/JsonLine.h"
#include "lumora/console/Failure.h"
#include "lumora/console/Interruption.h"
#include "lumora/console/JsonWriter.h"
#include "lumora/pictures/Imaging.h"

namespace Lumora {

namespace {

FileTask ReadOnly(const SourceFile& file)
{
    FileTask task;
    task.path = file.path;
    task.wantsProperties = true;
    return task;
}

std::wstring ForPeople(const SourceFile& file, const FileProperties& properties)
{
    constexpr size_t labelColumns = 16;
    std::wstring text = file.name + L'\n';
    for (const PropertyName& property : propertyNames)
    {
        std::wstring label = property.label;
        label.resize(labelColumns, L' ');
        const std::wstring words = properties.TextOf(property.property);
        text += L"  " + label + (words.empty() ? L"-" : words) + L'\n';
    }
    return text;
}

/// Prints what is known of a file. When nobody reads it any more, there is no use in going on.
void PrintOrStop(Console& console, const std::wstring& text)
{
    console.Print(text);
    if (!console.IsComplete())
        throw Failure{notAllWritten};
}

int PrintForPeople(const CommandLine& line, Console& console)
{
    return RunBatch(line, console, {ReadOnly, [&console](const SourceFile& file, const FileReport& report) {
                                        if (!report.failure)
                                            PrintOrStop(console, ForPeople(file, *report.properties));
                                    }});
}

int PrintArray(const CommandLine& line, Console& console)
{
    JsonWriter json;
    json.BeginArray();
    const int exitCode =
        RunBatch(line, console, {ReadOnly, [&](const SourceFile& file, const FileReport& report) {
                                     json.BeginObject();
                                     json.Text(L"path", file.name);
                                     if (report.failure)
                                         json.Text(L"error", *report.failure);
                                     else
                                         WriteProperties(json, *report.properties);
                                     json.EndObject();
                                     PrintOrStop(console, json.Take());
                                 }});
    json.EndArray();
    console.Print(json.Take() + L'\n');
    return exitCode;
}

int PrintLines(const CommandLine& line, Console& console)
{
    return RunBatch(
        line, console,
        {.plan = ReadOnly,
         .finish =
             [&console](const SourceFile& file, const FileReport& report) {
                 PrintOrStop(console, JsonLine(file, report, false));
             },
         .endShard = [&console](const ShardMark& mark) { PrintOrStop(console, mark.Text() + L'\n'); }});
}

} // namespace

int RunInfo(const CommandLine& line, Console& console)
{
    const Interruption interruption;
    Imaging().RequireProperties();
    if (line.wantsJsonLines)
        return PrintLines(line, console);
    return line.wantsJson ? PrintArray(line, console) : PrintForPeople(line, console);
}

} // namespace Lumora
