#include "server/uri.h"

#include <algorithm>
#include <charconv>

#include "diagnostics/report_writer.h"
#include "platform/platform.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::string_view scheme = "file:";

// A "%" without two hex digits after it is unchanged.
std::string Unescaped(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        unsigned value = 0;
        const char* const digits = text.data() + 1;
        if (text.front() == '%' && text.size() >= 3 &&
            std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2) {
            plain += static_cast<char>(value);
            text.remove_prefix(3);
        } else {
            plain += text.front();
            text.remove_prefix(1);
        }
    }
    return plain;
}

bool IsPlain(char c) {
    return HasClass(c, CC_LETTER | CC_DIGIT) ||
           std::string_view("-._~/").find(c) != std::string_view::npos;
}

}  // namespace

std::optional<std::string> PathOfUri(std::string_view uri) {
    if (!std::ranges::equal(uri.substr(0, scheme.size()), scheme, {}, Raised, Raised)) {
        return std::nullopt;
    }
    std::string path = Unescaped(uri.substr(scheme.size()));
    if (path.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    constexpr std::string_view localHost = "//localhost/";
    if (path.starts_with("///")) {
        path.erase(0, 2);
    } else if (path.starts_with(localHost)) {
        path.erase(0, localHost.size() - 1);
    }
    if (path.starts_with('/') && platform::DriveLength(path.substr(1)) != 0) {
        path.erase(0, 1);
    }
    return path;
}

std::string UriOfPath(std::string_view path) {
    std::string uri = platform::DriveLength(path) != 0 ? "file:///"
                      : path.starts_with("\\\\")       ? "file:"
                                                       : "file://";
    const bool hasDrives = platform::DriveLength("c:") != 0;
    for (const char c : path) {
        if (c == '\\' && hasDrives) {  // on other systems, a backslash is part of a name
            uri += '/';
        } else if (IsPlain(c)) {
            uri += c;
        } else {
            const auto& digits = hexadecimal[static_cast<unsigned char>(c)];
            uri.append("%").append(digits.data(), digits.size());
        }
    }
    return uri;
}

}  // namespace korv
