#include "lumora/arguments/CommandLine.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace Lumora {

namespace {

// Below the one nothing can be made out, beyond the other a row of pictures takes too much memory.
constexpr uint32_t smallestSheetPicture = 32;
constexpr uint32_t largestSheetPicture = 1024;
constexpr uint32_t mostColumns = 32;

Command CommandOf(std::wstring_view name)
{
    if (name == L"info")
        return Command::Info;
    if (name == L"render")
        return Command::Render;
    if (name == L"sheet")
        return Command::Sheet;
    if (name == L"doctor")
        return Command::Doctor;
    if (name == L"register")
        return Command::Register;
    if (name == L"unregister")
        return Command::Unregister;
    throw UsageError{L"there is no command " + std::wstring(name)};
}

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

    [[nodiscard]] bool Is(Command first, Command second = Command::None) const
    {
        return line.command == first || (second != Command::None && line.command == second);
    }

    [[nodiscard]] bool WantsFiles() const { return Is(Command::Info, Command::Render) || Is(Command::Sheet); }

    void TakeWord(std::wstring_view word)
    {
        if (Is(Command::None))
            line.command = CommandOf(word);
        else if (WantsFiles() || Is(Command::Doctor))
            line.paths.emplace_back(word);
        else
            Refuse(L"this command takes no " + std::wstring(word));
    }

    /// An option, whose value follows as the next argument or after an equals sign.
    void TakeOption(std::wstring_view argument)
    {
        const size_t equals = argument.find(L'=');
        const std::wstring_view name = argument.substr(0, equals);
        if (equals != std::wstring_view::npos)
            attachedValue = argument.substr(equals + 1);

        if (name == L"--help" || name == L"-h")
            line.wantsHelp = true;
        else if (name == L"--version" && Is(Command::None))
            line.wantsVersion = true;
        else if (name == L"--verbose" && WantsFiles())
            line.isVerbose = true;
        else if (name == L"--json" && Is(Command::Info, Command::Doctor))
            line.wantsJson = true;
        else if (name == L"-o" && Is(Command::Render))
            line.outputFolder = Value(name);
        else if (name == L"--frame" && Is(Command::Render))
            line.frame = Frame(Value(name));
        else if (name == L"--size" && Is(Command::Render))
            line.longerSide = Number(name, Value(name), 1);
        else if (name == L"-o" && Is(Command::Sheet))
            line.sheetName = Value(name);
        else if (name == L"--size" && Is(Command::Sheet))
            line.longerSide = Number(name, Value(name), smallestSheetPicture, largestSheetPicture);
        else if (name == L"--columns" && Is(Command::Sheet))
            line.columns = Number(name, Value(name), 1, mostColumns);
        else if (name == L"--user" && Is(Command::Register, Command::Unregister))
            line.scope = Scope::User;
        else if (name == L"--dll" && Is(Command::Register, Command::Doctor))
            line.dllPath = Value(name);
        else if (name == L"--without" && Is(Command::Register))
            line.leftOut = Value(name);
        else if (name == L"--check" && Is(Command::Register))
            line.onlyCheck = true;
        else
            Refuse(L"there is no option " + std::wstring(name) + (Is(Command::None) ? L"" : L" here"));

        if (attachedValue)
            Refuse(std::wstring(name) + L" takes no value");
    }

    std::wstring_view Value(std::wstring_view option)
    {
        if (!attachedValue && rest.empty())
            Refuse(std::wstring(option) + L" needs a value");
        const std::wstring_view value = attachedValue ? *attachedValue : Take();
        attachedValue.reset();
        if (value.empty())
            Refuse(std::wstring(option) + L" needs a value");
        return value;
    }

    [[nodiscard]] std::optional<uint32_t> Frame(std::wstring_view value) const
    {
        if (value == L"all")
            return std::nullopt;
        return Number(L"--frame", value, 0);
    }

    /// A decimal number from `lowest` to `highest`.
    [[nodiscard]] uint32_t Number(std::wstring_view option, std::wstring_view value, uint32_t lowest,
                                  uint32_t highest = std::numeric_limits<uint32_t>::max()) const
    {
        uint64_t number = 0;
        for (const wchar_t digit : value)
        {
            if (digit < L'0' || digit > L'9' || number > highest)
                Refuse(std::wstring(option) + L" does not take " + std::wstring(value));
            number = number * 10 + static_cast<uint64_t>(digit - L'0');
        }
        if (number < lowest || number > highest)
            Refuse(std::wstring(option) + L" does not take " + std::wstring(value));
        return static_cast<uint32_t>(number);
    }

    void CheckCompleteness() const
    {
        if (Is(Command::None))
            Refuse(L"a command is missing");
        if (WantsFiles() && line.paths.empty())
            Refuse(L"a file or folder is missing");
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
