#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Lumora {

/// Writes an array of flat objects, one on each line (RFC 8259).
class JsonWriter
{
public:
    void BeginObject();
    void Text(std::wstring_view name, std::wstring_view value);
    void Number(std::wstring_view name, uint32_t value);
    void Null(std::wstring_view name);
    void EndObject();

    /// What was written since the last call.
    [[nodiscard]] std::wstring Take();

    /// The end of the array with what was not yet taken.
    [[nodiscard]] std::wstring Finish();

private:
    void Name(std::wstring_view name);
    void Quoted(std::wstring_view value);

    std::wstring text = L"[";
    bool isFirstObject = true;
    bool isFirstMember = true;
};

} // namespace Lumora
