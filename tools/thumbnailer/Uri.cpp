#include "thumbnailer/Uri.h"

#include <optional>
#include <stdexcept>

namespace Lumora {

namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

std::optional<unsigned> HexValue(char digit)
{
    const size_t value =
        hexDigits.find(digit >= 'a' && digit <= 'f' ? static_cast<char>(digit - 'a' + 'A') : digit);
    return value == std::string_view::npos ? std::nullopt : std::optional(static_cast<unsigned>(value));
}

} // namespace

std::string PathOf(std::string_view pathOrUri)
{
    constexpr std::string_view scheme = "file:";
    constexpr std::string_view localhost = "localhost";
    if (!pathOrUri.starts_with(scheme))
        return std::string(pathOrUri);
    std::string_view rest = pathOrUri.substr(scheme.size());
    if (rest.starts_with("//"))
    {
        rest.remove_prefix(2);
        if (rest.starts_with(localhost))
            rest.remove_prefix(localhost.size());
    }
    if (!rest.starts_with('/'))
        throw std::runtime_error("not the URI of a file on this machine");
    std::string path;
    while (!rest.empty())
    {
        char byte = rest.front();
        size_t used = 1;
        if (byte == '%')
        {
            const std::optional<unsigned> high = rest.size() > 2 ? HexValue(rest[1]) : std::nullopt;
            const std::optional<unsigned> low = rest.size() > 2 ? HexValue(rest[2]) : std::nullopt;
            if (!high || !low || (*high == 0 && *low == 0))
                throw std::runtime_error("not a valid URI");
            byte = static_cast<char>(*high << 4 | *low);
            used = 3;
        }
        path += byte;
        rest.remove_prefix(used);
    }
    return path;
}

std::string UriOf(std::string_view path)
{
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,;=:@/";
    std::string uri = "file://";
    for (const char byte : path)
    {
        if (plain.find(byte) != std::string_view::npos)
        {
            uri += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        uri += '%';
        uri += hexDigits[value >> 4];
        uri += hexDigits[value & 15];
    }
    return uri;
}

} // namespace Lumora
