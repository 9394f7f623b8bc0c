#include "lumora/arguments/CommandLine.h"

#include "lumora/arguments/Commands.h"

#include <algorithm>
#include <string_view>

namespace Lumora {

namespace {

class Parser
{
public:
    explicit Parser(std::span<const wchar_t* const> arguments) : rest(arguments) {}

    CommandLine Parse()
    {
        bool areOptionsOver = false;
        while (!rest.empty())
        {
            const std::wstring_view argument = Take();
            if (areOptionsOver || argument.size() < 2 || argument.front() != L'-')
                TakeWord(argument);
            else if (argument == L"--")
                areOptionsOver = true;
            else
                TakeOption(argument);
        }
        if (!line.wantsHelp && !line.wantsVersion)
            CheckCompleteness();
        return std::move(line);
    }

private:
    [[noreturn]] void Refuse(std::wstring text) const { throw UsageError{std::move(text), line.command}; }

    std::wstring_view Take()
    {
        const std::wstring_view argument = rest.front();
        rest = rest.subspan(1);
        return argument;
    }

    [[nodiscard]] const CommandDescription& Description() const { return DescriptionOf(line.command); }

    void TakeWord(std::wstring_view word)
    {
        if (line.command == Command::None)
            line.command = NamedCommand(word);
        else if (!Description().pathName.empty())
            line.paths.emplace_back(word);
        else
            Refuse(L"this command takes no " + std::wstring(word));
    }

    [[nodiscard]] Command NamedCommand(std::wstring_view name) const
    {
        const auto commands = AllCommands();
        const auto found = std::ranges::find(commands, name, &CommandDescription::name);
        if (found == commands.end())
            Refuse(L"there is no command " + std::wstring(name));
        return found->command;
    }

    /// An option. Its value follows an equals sign or is the next argument.
    void TakeOption(std::wstring_view argument)
    {
        const size_t equals = argument.find(L'=');
        const std::wstring name(argument.substr(0, equals));
        if (equals != std::wstring_view::npos)
            attachedValue = argument.substr(equals + 1);

        const auto options = Description().options;
        const auto option = std::ranges::find(options, name, &Option::name);
        if (name == L"--help" || name == L"-h")
            line.wantsHelp = true;
        else if (option == options.end())
            Refuse(L"there is no option " + name + (line.command == Command::None ? L"" : L" here"));
        else if (option->valueName.empty())
            option->take(line, {});
        else if (const std::wstring_view value = Value(name); !option->take(line, value))
            Refuse(name + L" does not take " + std::wstring(value));

        if (attachedValue)
            Refuse(name + L" takes no value");
    }

    std::wstring_view Value(const std::wstring& option)
    {
        if (!attachedValue && rest.empty())
            Refuse(option + L" needs a value");
        const std::wstring_view value = attachedValue ? *attachedValue : Take();
        attachedValue.reset();
        if (value.empty())
            Refuse(option + L" needs a value");
        return value;
    }

    void CheckCompleteness() const
    {
        if (line.command == Command::None)
            Refuse(L"a command is missing");
        if (Description().needsPath && line.paths.empty() && line.namesFrom.empty())
            Refuse(L"a file or folder is missing");
        if (const wchar_t* const conflict = Description().conflict(line))
            Refuse(conflict);
    }

    std::span<const wchar_t* const> rest;
    std::optional<std::wstring_view> attachedValue;
    CommandLine line;
};

} // namespace

CommandLine ParseCommandLine(std::span<const wchar_t* const> arguments)
{
    return Parser(arguments).Parse();
}

} // namespace Lumora
