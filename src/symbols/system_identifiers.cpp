// What a source may not define: the version identifiers, which expressions can read, and the
// reserved words, which have no value. They do nothing but keep those names from being labels;
// mnemonics are found by the recogniser.

#include "symbols/system_identifiers.h"

#include <algorithm>
#include <array>

#include "codegen/keywords.h"
#include "driver/assembler.h"

namespace korv {
namespace {

struct VersionIdentifier {
    std::string_view name;
    std::int32_t value;
};

// The version 2.00.025.
constexpr std::array versionIdentifiers = {
    VersionIdentifier{"KORV_VER", 2},
    VersionIdentifier{"KORV", 2},
    VersionIdentifier{"KORV_LOW", 0},
    VersionIdentifier{"KORV_BUILD", 25},
};

// The reserved words are the keywords but for these, which are free as labels, and two more, which
// are no commands.
constexpr std::string_view freeKeywords[] = {"DEFB", "DEFD", "DEFM",    "DEFS",
                                             "DEFW", "END",  "MAC_OFF", "MAC_ON"};
constexpr std::string_view furtherWords[] = {"MACROS_OFF", "MACROS_ON"};

constexpr void ForEachReservedWord(auto visit) {
    for (const Keyword& keyword : keywords) {
        if (std::find(std::begin(freeKeywords), std::end(freeKeywords), keyword.word) ==
            std::end(freeKeywords)) {
            visit(keyword.word);
        }
    }
    for (const std::string_view word : furtherWords) {
        visit(word);
    }
}

constexpr std::size_t listSize = [] {
    std::size_t size = 0;
    ForEachReservedWord([&size](std::string_view word) { size += word.size() + 1; });
    return size;
}();

constexpr auto list = [] {
    std::array<char, listSize> text{};
    char* end = text.data();
    ForEachReservedWord([&end](std::string_view word) {
        end = std::copy(word.begin(), word.end(), end);
        *end++ = '\t';
    });
    return text;
}();

}  // namespace

constexpr std::string_view reservedWords(list.data(), list.size() - 1);

void CAssembler::LoadSystemIdentifiers() {
    std::int32_t result = 0;
    for (const VersionIdentifier& row : versionIdentifiers) {
        result |= identifiers.AddID({row.name, 0, 0, row.value, IDS_SYSTEM});
    }
    if (result != 0) {
        errors.Report(MSG_SYSTEM_ERROR, "LoadSystemIdentifiers (version info) failed!", 0, 0);
    }
}

std::int32_t CAssembler::LoadSystemIdentifiersFromString(std::string_view list) {
    std::int32_t count = 0;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find('\t'), list.size());
        if (identifiers.AddID({list.substr(0, end), 0, 0, 0, IDS_RESERVED_WORD}) != 0) {
            errors.Report(MSG_SYSTEM_ERROR, "LoadSystemIdentifiersFromString->AddID failed!", 0, 0);
        }
        ++count;
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return count;
}

}  // namespace korv
