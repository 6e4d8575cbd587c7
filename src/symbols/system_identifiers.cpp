// The names that a source may not define: the version identifiers, which expressions can read, and
// the reserved words. Reserved words have no value. Reserving a word only keeps it from becoming a
// label: mnemonics are found by the recogniser.

#include "symbols/system_identifiers.h"

#include <algorithm>

#include "codegen/keywords.h"
#include "driver/assembler.h"

namespace korv {
namespace {

static_assert(KORV_VERSION == std::string_view("2.00.025"), "the numbers here are of that one");
constexpr Definition versionIdentifiers[] = {
    {"KORV_VER", {}, 2, IDS_SYSTEM},
    {"KORV", {}, 2, IDS_SYSTEM},
    {"KORV_LOW", {}, 0, IDS_SYSTEM},
    {"KORV_BUILD", {}, 25, IDS_SYSTEM},
};

// Keywords that may be labels. All others are reserved.
constexpr std::string_view freeKeywords[] = {"DEFB", "DEFD", "DEFM",    "DEFS",
                                             "DEFW", "END",  "MAC_OFF", "MAC_ON"};

constexpr bool IsFree(std::string_view word) {
    return std::ranges::find(freeKeywords, word) != std::end(freeKeywords);
}
static_assert(std::ranges::count_if(keywords, IsFree, &Keyword::word) == std::ssize(freeKeywords),
              "freeKeywords holds a word that is no keyword");

}  // namespace

constexpr WordSet reservedWords = [] {
    WordSet set;
    for (const Keyword& keyword : keywords) {
        if (!IsFree(keyword.word)) {
            set.Add(keyword.word);
        }
    }
    set.Add("MACROS_OFF");
    set.Add("MACROS_ON");
    return set;
}();

void CAssembler::LoadSystemIdentifiers() {
    for (const Definition& definition : versionIdentifiers) {
        identifiers.AddID(definition);
    }
    if (flags.Has(RF_SYSTEM_IDS)) {
        identifiers.Reserve(reservedWords);
    }
}

}  // namespace korv
