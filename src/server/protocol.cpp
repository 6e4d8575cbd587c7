#include "server/protocol.h"

#include <algorithm>

#include "diagnostics/report_writer.h"

namespace korv {
namespace {

// The number of bytes in the first character of `line`, which must not be empty.
std::size_t SizeOfFirst(std::string_view line) {
    const PrintableCharacter first = FirstCharacter(line);
    const bool isControl = line.front() == '\xC2' && first.code < 0xA0;  // U+0080 to U+009F
    return isControl ? 2 : std::max<std::size_t>(first.size, 1);
}

std::uint32_t UnitsOfCharacter(std::size_t bytes, PositionEncoding encoding) {
    return encoding == PositionEncoding::utf8 ? static_cast<std::uint32_t>(bytes)
           : bytes == 4                       ? 2
                                              : 1;
}

}  // namespace

std::uint32_t UnitsOf(std::string_view line, std::size_t column, PositionEncoding encoding) {
    std::uint32_t units = 0;
    for (std::size_t at = 0; at < std::min(column, line.size());) {
        const std::size_t size = SizeOfFirst(line.substr(at));
        at += size;
        units += UnitsOfCharacter(size, encoding);
    }
    return units;
}

std::size_t ColumnOf(std::string_view line, std::uint32_t character, PositionEncoding encoding) {
    std::size_t column = 0;
    while (column < line.size()) {
        const std::size_t size = SizeOfFirst(line.substr(column));
        const std::uint32_t units = UnitsOfCharacter(size, encoding);
        if (units > character) {
            break;
        }
        column += size;
        character -= units;
    }
    return column;
}

RequestError Missing(std::string path) {
    std::ranges::replace(path, '/', '.');
    return {ErrorCode::invalidParameters, "missing or wrong: " + path.substr(1)};
}

const Json& At(const Json& json, const std::string& path) {
    static const Json none;
    const Json::json_pointer pointer(path);
    return json.contains(pointer) ? json[pointer] : none;
}

Strings StringsOf(const Json& json, const std::string& listPath, const std::string& path) {
    Strings strings;
    if (const auto* const list = Find<Json::array_t>(json, listPath)) {
        for (const Json& each : *list) {
            if (const auto* const text = Find<std::string>(each, path)) {
                strings.push_back(*text);
            }
        }
    }
    return strings;
}

std::optional<Position> FindPosition(const Json& json, const std::string& path) {
    constexpr std::int64_t most = UINT32_MAX;
    const auto line = Get<std::int64_t>(json, path + "/line", -1);
    const auto character = Get<std::int64_t>(json, path + "/character", -1);
    if (line < 0 || character < 0) {
        return std::nullopt;
    }
    return Position{static_cast<std::uint32_t>(std::min(line, most)),
                    static_cast<std::uint32_t>(std::min(character, most))};
}

std::optional<Range> FindRange(const Json& json, const std::string& path) {
    const auto start = FindPosition(json, path + "/start");
    const auto end = FindPosition(json, path + "/end");
    return start && end ? std::optional(Range{*start, *end}) : std::nullopt;
}

}  // namespace korv
