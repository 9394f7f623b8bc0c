#include "formats/hdf/Json.h"

#include "core/stream/StreamReader.h"
#include "core/stream/Text.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace Tav::Imaging::RawImage {

Json::Json(std::string jsonText) : text(std::move(jsonText)) {}

bool Json::GetString(const std::string& key, std::string& value) const
{
    const std::string quotedKey = '"' + ToLower(key) + '"';
    for (size_t begin = 0, end = 0; begin < text.size(); begin = end + 1)
    {
        end = std::min(text.find('\n', begin), text.size());
        // Splits one line at a time, and only if it has few colons: a list of all pieces can be many times as
        // large as the text.
        if (std::count(text.begin() + static_cast<std::ptrdiff_t>(begin),
                       text.begin() + static_cast<std::ptrdiff_t>(end), ':') > 2)
            continue;
        const std::vector<std::string> sides = SplitString(text.substr(begin, end - begin), ':');
        if (sides.size() != 2 || ToLower(sides[0]).find(quotedKey) == std::string::npos)
            continue;
        const size_t opening = sides[1].find('"');
        const size_t closing = sides[1].rfind('"');
        if (opening == std::string::npos || closing < opening + 2)
            continue;
        value = sides[1].substr(opening + 1, closing - opening - 1);
        return true;
    }
    return false;
}

} // namespace Tav::Imaging::RawImage
