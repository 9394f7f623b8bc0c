#include "lumora/arguments/HelpText.h"

#include "lumora/arguments/Commands.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace Lumora {

namespace {

// The narrowest terminal that is common.
constexpr size_t lineLength = 80;

/// Appends a paragraph to a text whose last line ends at `column`. Its further lines are indented.
void AppendWrapped(std::wstring& text, std::wstring_view paragraph, size_t column, size_t indent)
{
    while (!paragraph.empty())
    {
        const std::wstring_view word = paragraph.substr(0, paragraph.find(L' '));
        paragraph.remove_prefix(std::min(word.size() + 1, paragraph.size()));
        if (column + word.size() > lineLength)
        {
            text.back() = L'\n';
            text.append(indent, L' ');
            column = indent;
        }
        text.append(word) += L' ';
        column += word.size() + 1;
    }
    text.back() = L'\n';
}

std::wstring Invocation(const Option& option)
{
    std::wstring text(option.name);
    if (!option.valueName.empty())
        text.append(L" ").append(option.valueName);
    return text;
}

std::wstring Usage(const CommandDescription& command)
{
    if (command.command == Command::None)
        return L"COMMAND [OPTIONS]";
    std::wstring text(command.name);
    for (const Option& option : command.options)
        text += L" [" + Invocation(option) + L"]";
    if (!command.pathName.empty())
    {
        const std::wstring paths = std::wstring(command.pathName) + L"...";
        text += L' ' + (command.needsPath ? paths : L'[' + paths + L']');
    }
    return text;
}

using Rows = std::vector<std::pair<std::wstring, std::wstring_view>>;

/// Appends names and, in a column of their own, what they mean.
void AppendTable(std::wstring& text, std::wstring_view title, const Rows& rows)
{
    size_t indent = 0;
    for (const auto& [name, meaning] : rows)
        indent = std::max(indent, 2 + name.size() + 2);
    text.append(L"\n").append(title).append(L":\n");
    for (const auto& [name, meaning] : rows)
    {
        text += L"  " + name + std::wstring(indent - 2 - name.size(), L' ');
        AppendWrapped(text, meaning, indent, indent);
    }
}

void AppendDetails(std::wstring& text, std::wstring_view details)
{
    while (!details.empty())
    {
        const std::wstring_view paragraph = details.substr(0, details.find(L'\n'));
        details.remove_prefix(paragraph.size() + 1);
        text += L'\n';
        AppendWrapped(text, paragraph, 0, 0);
    }
}

} // namespace

std::wstring HelpText(Command command)
{
    const CommandDescription& description = DescriptionOf(command);
    std::wstring text = std::wstring(description.summary) + L".\n\n";

    constexpr std::wstring_view usage = L"Usage: lumora ";
    text += usage;
    AppendWrapped(text, Usage(description), usage.size(), usage.size());

    const std::wstring pathName(description.pathName);
    if (!description.filesOfFolder.empty())
        AppendDetails(text, L"A " + pathName +
                                L" is a file, a pattern such as *.mrc, or a folder. A folder stands for " +
                                std::wstring(description.filesOfFolder) + L'\n');
    AppendDetails(text, description.details);

    if (command == Command::None)
    {
        Rows commands;
        for (const CommandDescription& each : AllCommands())
            commands.emplace_back(each.name, each.summary);
        AppendTable(text, L"Commands", commands);
    }

    Rows options;
    for (const Option& option : description.options)
        options.emplace_back(Invocation(option), option.meaning);
    const std::wstring endOfOptions = L"what follows is a " + pathName + L", even if it begins with a dash";
    if (!pathName.empty())
        options.emplace_back(L"--", endOfOptions);
    options.emplace_back(L"--help", command == Command::None ? L"this text; after a command, how it is used"
                                                             : L"this text");
    AppendTable(text, L"Options", options);
    return text;
}

std::wstring HelpInvocation(Command command)
{
    std::wstring text = L"lumora ";
    if (command != Command::None)
        text.append(DescriptionOf(command).name).append(L" ");
    return text + L"--help";
}

} // namespace Lumora
