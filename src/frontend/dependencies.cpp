// Names come from sources that the user may not have written, and GNU make runs any command in a
// rule. So only characters that both GNU make 4.3 and ninja 1.11 read back unchanged are accepted.
// Each of them was tested with both.

#include "frontend/dependencies.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "platform/platform.h"

namespace korv {
namespace {

// This set excludes characters that end a name in ninja or are special to make, such as "%", "=",
// "*", "?", "[", "&", ";" and "|". Neither program can escape all of them.
bool IsPlain(char c) {
    constexpr std::string_view signs = "+,-./@_~(){}!]";
    return static_cast<unsigned char>(c) >= 0x80 || (c >= '0' && c <= '9') ||
           (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           signs.find(c) != std::string_view::npos;
}

bool IsEscapable(char c) {
    return c == ' ' || c == '#' || c == ':' || c == '$';
}

// True if make would mistake the target for a special one, such as ".SUFFIXES", or for a directive.
bool IsSpecial(std::string_view name) {
    while (name.starts_with("./")) {
        name.remove_prefix(2);
    }
    const auto isLarge = [](char c) { return (c >= 'A' && c <= 'Z') || c == '_'; };
    return name == "define" || (name.starts_with('.') && name.size() > 1 &&
                                std::ranges::all_of(name.substr(1), isLarge));
}

bool IsWritable(std::string_view name) {
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char next = i + 1 < name.size() ? name[i + 1] : '\0';
        // A backslash stays as it is if it cannot escape the next character.
        const bool isOrdinary = name[i] == '\\' && (next == '\\' || IsPlain(next));
        if (!isOrdinary && !IsPlain(name[i]) && !IsEscapable(name[i])) {
            return false;
        }
    }
    // A leading "~" means a home directory, and a final ")" a member of an archive. The backslash
    // that escapes a final blank or colon would be misread.
    return !name.starts_with('~') && !name.ends_with(')') && !name.ends_with(' ') &&
           !name.ends_with(':') && !IsSpecial(name);
}

// Both make and ninja accept the colon after a drive letter.
std::string Escaped(std::string_view name) {
    const std::size_t drive = platform::DriveLength(name);
    std::string text(name.substr(0, drive));
    for (const char c : name.substr(drive)) {
        if (IsEscapable(c)) {
            text += c == '$' ? '$' : '\\';
        }
        text += c;
    }
    return text;
}

// The name with forward slashes, which rules use on every system.
std::string Generic(const std::string& name) {
    const std::filesystem::path path(std::u8string(name.begin(), name.end()));
    const std::u8string text = path.generic_u8string();
    return {text.begin(), text.end()};
}

}  // namespace

Dependencies DependenciesOf(const Analysis& analysis, const std::string& target) {
    const auto refusal = [](const std::string& name) {
        return "cannot write dependencies: make or ninja would misread the name '" + name + "'";
    };
    if (!IsWritable(std::string_view(target).substr(platform::DriveLength(target)))) {
        return {"", refusal(target)};
    }
    std::string text = Escaped(target) + ":", rules;
    for (const SourceFile& file : analysis.files) {
        if (file.isStandardInput) {
            continue;
        }
        const std::string name = Generic(file.name);
        if (!IsWritable(std::string_view(name).substr(platform::DriveLength(name)))) {
            return {"", refusal(file.name)};
        }
        text += " \\\n  " + Escaped(name);
        rules += "\n" + Escaped(name) + ":\n";
    }
    return {text + "\n" + rules, ""};
}

}  // namespace korv
