#include "formats/hdf/Json.h"

#include "core/stream/StreamReader.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace Tav::Imaging::RawImage {

Json::Json(std::string jsonText) : text(std::move(jsonText)) {}

bool Json::GetString(const std::string& key, std::string& value) const
{
    const std::string quotedKey = '"' + ToLower(key) + '"';
    const std::string_view lines = text;
    for (size_t begin = 0, end = 0; begin < lines.size(); begin = end + 1)
    {
        end = std::min(lines.find('\n', begin), lines.size());
        const std::string_view line = lines.substr(begin, end - begin);
        const size_t colon = line.find(':');
        if (colon == std::string_view::npos)
            continue;
        std::string_view after = line.substr(colon + 1);
        // A colon at the end of the line does not count.
        if (after.ends_with(':'))
            after.remove_suffix(1);
        if (after.find(':') != std::string_view::npos ||
            ToLower(std::string{line.substr(0, colon)}).find(quotedKey) == std::string::npos)
            continue;
        const size_t opening = after.find('"');
        const size_t closing = after.rfind('"');
        if (opening == std::string_view::npos || closing < opening + 2)
            continue;
        value = after.substr(opening + 1, closing - opening - 1);
        return true;
    }
    return false;
}

} // namespace Tav::Imaging::RawImage
