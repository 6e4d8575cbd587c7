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

static_assert(KORV_VERSION == std::string_view("2.00.025"), "the numbers here are of that one");
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

constexpr auto wordList = [] {
    std::array<char, 512> text{};
    char* end = text.data();
    const auto add = [&end](std::string_view word) { end = std::ranges::copy(word, end).out; };
    for (const Keyword& keyword : keywords) {
        if (std::ranges::find(freeKeywords, keyword.word) == std::end(freeKeywords)) {
            add(keyword.word);
            add("\t");
        }
    }
    add("MACROS_OFF\tMACROS_ON");
    return text;
}();

}  // namespace

constexpr WordSet reservedWords(wordList.data());

void CAssembler::LoadSystemIdentifiers() {
    std::int32_t result = 0;
    for (const VersionIdentifier& row : versionIdentifiers) {
        result |= identifiers.AddID(
            {.name = row.name, .place = {}, .value = row.value, .flags = IDS_SYSTEM});
    }
    if (result != 0) {
        errors.Report(MSG_SYSTEM_ERROR, "LoadSystemIdentifiers (version info) failed!");
    }
}

std::int32_t CAssembler::LoadSystemIdentifiersFromString(const WordSet& list) {
    identifiers.Reserve(list);
    return list.Count();
}

}  // namespace korv
