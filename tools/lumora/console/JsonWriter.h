#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Lumora {

/// Writes JSON (RFC 8259): each object of an array begins a line. The caller ends what it has begun, in the
/// reverse order.
class JsonWriter
{
public:
    /// The outermost object, or one in an array.
    void BeginObject();
    void EndObject();

    /// The outermost array; with a name, a member of an object.
    void BeginArray();
    void BeginArray(std::wstring_view name);
    void EndArray();

    void Text(std::wstring_view name, std::wstring_view value);
    void Number(std::wstring_view name, uint32_t value);
    void Truth(std::wstring_view name, bool value);
    void Null(std::wstring_view name);

    /// What was written since the last call.
    [[nodiscard]] std::wstring Take();

private:
    void Name(std::wstring_view name);
    void Quoted(std::wstring_view value);
    void BeginLine();

    std::wstring text;
    bool isFirst = true;
    /// How many arrays are open.
    size_t depth = 0;
};

} // namespace Lumora
