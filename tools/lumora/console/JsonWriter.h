#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Lumora {

/// Writes JSON (RFC 8259). The caller ends what it has begun, in the reverse order.
class JsonWriter
{
public:
    enum class Layout
    {
        /// Each object of an array begins a line.
        Lines,
        OneLine,
    };

    explicit JsonWriter(Layout jsonLayout = Layout::Lines) : layout(jsonLayout) {}

    /// The outermost object, or one in an array.
    void BeginObject();
    void EndObject();

    /// The outermost array; with a name, a member of an object.
    void BeginArray();
    void BeginArray(std::wstring_view name);
    void EndArray();

    void Text(std::wstring_view name, std::wstring_view value);
    void Texts(std::wstring_view name, const std::vector<std::wstring>& values);
    void Number(std::wstring_view name, uint64_t value);
    void Truth(std::wstring_view name, bool value);
    void Null(std::wstring_view name);

    /// What was written since the last call.
    [[nodiscard]] std::wstring Take();

private:
    void Name(std::wstring_view name);
    void Quoted(std::wstring_view value);
    void Escaped(wchar_t character);
    void BeginLine();

    const Layout layout;
    std::wstring text;
    bool isFirst = true;
    /// How many arrays are open.
    size_t depth = 0;
};

} // namespace Lumora
