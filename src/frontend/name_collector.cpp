#include "frontend/name_collector.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "driver/statement.h"
#include "expr/number.h"
#include "frontend/message_maker.h"
#include "frontend/statement_record.h"
#include "frontend/statement_view.h"
#include "source/char_class.h"
#include "symbols/identifier_manager.h"

namespace korv {
namespace {

NameKind KindOf(const CIdentifier& record) {
    if ((record.flags & IDF_INTERNAL) != 0) {
        return NameKind::internal;
    }
    if ((record.flags & IDF_LABEL) != 0) {
        return NameKind::label;
    }
    if ((record.flags & IDF_EQU) != 0) {
        return record.file == 0 ? NameKind::commandLine : NameKind::constant;
    }
    return NameKind::undefined;
}

bool IsReserved(const CIdentifier& record) {
    return (record.flags & IDS_SYSTEM) == IDS_RESERVED_WORD;
}

bool IsDigit(char c) {
    return HasClass(c, CC_DIGIT);
}

// True if the operand of `keyword` is the name of a file.
bool NamesFile(const Keyword* keyword) {
    return keyword != nullptr &&
           (keyword->handler == AssembleInclude || keyword->handler == AssembleBinclude);
}

// The part of the operand `text` that is evaluated: the text in its parentheses, or the
// displacement of IX or IY.
std::string_view EvaluatedPart(std::string_view text, const OperandClass& operand) {
    const std::string_view inner = WithoutParentheses(text);
    const bool hasSign =
        IsIndexed(operand) && inner.size() > 2 && (inner[2] == '+' || inner[2] == '-');
    return inner.substr(hasSign ? 3 : 0);
}

// True if `word` is certainly a single name, not a number or an expression. May miss some names.
bool IsOneName(std::string_view word) {
    if (word.empty() || IsDigit(word.front()) || FindWord(word).code != 0) {
        return false;
    }
    return word.back() != 'H' &&  // perhaps a number such as FFH
           std::ranges::all_of(word, [](char c) { return HasClass(c, CC_NAME); });
}

bool IsNumber(std::string_view word) {
    std::int32_t value = 0;
    return !word.empty() && word.front() != '&' && ReadNumber(word, &value) == 0;
}

// True if nothing follows the mnemonic of `statement` (or its label if it has no mnemonic).
bool HasNoOperands(const CStatement& statement) {
    const std::string_view mnemonic = MnemonicOf(statement);
    return *SkipBlanks(mnemonic.data() + mnemonic.size()) == '\0';
}

// The first characters of `text`, up to 8, as a number that sorts like them.
std::uint64_t StartOf(std::string_view text) {
    std::uint64_t start = 0;
    for (std::size_t i = 0; i < sizeof start; ++i) {
        start = start << 8 | (i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0);
    }
    return start;
}

}  // namespace

void NameCollector::AddUses(CStatement& statement, const Keyword* keyword, bool isFaulty,
                            MessageMaker* places) {
    if (NamesFile(keyword)) {
        return;
    }
    if (isFaulty || (statement.args.Count() == 0 && !HasNoOperands(statement))) {
        // The core has evaluated only some of the operands, or none.
        for (const OperandView& operand : CutStatement(statement.text).operands) {
            AddNames(statement, operand.text, operand.what, places);
        }
        return;
    }
    for (const lsArg& arg : statement.args) {
        if (arg.IsValue()) {
            AddNames(statement, arg.text, arg, places);
        }
    }
}

void NameCollector::AddNames(const CStatement& statement, std::string_view text,
                             const OperandClass& operand, MessageMaker* places) {
    if (operand.kind == KIND_VALUE) {  // usually one name or number, which need not be split
        const std::string_view word = EvaluatedPart(text, operand);
        if (IsOneName(word)) {
            AddUse(statement, word, places);
            return;
        }
        if (IsNumber(word)) {
            return;
        }
    }
    TokenCutter cutter(text);
    for (std::size_t index = 0; const std::optional<Token> token = cutter.Next(); ++index) {
        if (IsLookedUp(*token, index, operand)) {
            AddUse(statement, token->text, places);
        }
    }
}

void NameCollector::AddUse(const CStatement& statement, std::string_view name,
                           MessageMaker* places) {
    const CIdentifier* const record = table->Find(name);
    Uses& all = record != nullptr ? uses[record] : earlyUses[std::string(name)];
    ++all.count;
    if (places != nullptr) {
        all.places.push_back(places->PlaceOf(statement.PlaceIn(name)));
    }
}

// Moves the early uses of each name that is now in the table to its other uses.
void NameCollector::JoinEarlyUses() {
    std::erase_if(earlyUses, [this](auto& early) {
        const CIdentifier* const record = table->Find(std::string_view(early.first));
        if (record == nullptr) {
            return false;
        }
        Uses& all = uses[record];
        all.count += early.second.count;
        all.places.insert(all.places.begin(), early.second.places.begin(),
                          early.second.places.end());
        return true;
    });
}

// A name to be sorted. Comparing numbers first is several times as fast as comparing texts.
struct NameCollector::Entry {
    const CIdentifier* record;  // null for a name with early uses only
    const std::pair<const std::string, Uses>* early;
    std::uint64_t start = StartOf(Text());

    [[nodiscard]] std::string_view Text() const {
        return record != nullptr ? record->Name() : early->first;
    }
    bool operator<(const Entry& other) const {
        return start != other.start ? start < other.start : Text() < other.Text();
    }
};

std::vector<NameCollector::Entry> NameCollector::SortedEntries() const {
    std::vector<Entry> entries;
    entries.reserve(static_cast<std::size_t>(table->RecordCount()) + earlyUses.size());
    for (std::int32_t i = 0; i < table->RecordCount(); ++i) {
        const CIdentifier& record = table->Record(i);
        if (!IsReserved(record) || uses.contains(&record)) {
            entries.push_back({&record, nullptr});
        }
    }
    for (const auto& early : earlyUses) {
        entries.push_back({nullptr, &early});
    }
    std::ranges::sort(entries, std::less());
    return entries;
}

Name NameCollector::NameOf(const Entry& entry, MessageMaker* places) {
    Name name;
    name.text = entry.Text();
    if (entry.record == nullptr) {
        name.useCount = entry.early->second.count;
        name.uses = entry.early->second.places;
        return name;
    }
    const CIdentifier& record = *entry.record;
    if (const auto all = uses.find(&record); all != uses.end()) {
        name.useCount = all->second.count;
        name.uses = std::move(all->second.places);
    }
    if (IsReserved(record)) {  // the source uses it but cannot define it
        return name;
    }
    name.kind = KindOf(record);
    name.hasValue = (record.flags & IDF_RESOLVED) != 0;
    name.value = name.hasValue ? record.value : 0;
    name.isUsed = (record.flags & IDF_USED) != 0;
    if (record.file != 0) {  // a name is defined at the start of its line
        name.opening = places->OpeningOf(record.file);
        name.definition = places->PlaceOf(
            {.file = record.file, .line = record.line, .length = record.nameLength});
    }
    return name;
}

std::vector<Name> NameCollector::Take(MessageMaker* places) {
    JoinEarlyUses();
    const std::vector<Entry> entries = SortedEntries();
    std::vector<Name> names;
    names.reserve(entries.size());
    for (const Entry& entry : entries) {
        names.push_back(NameOf(entry, places));
    }
    return names;
}

}  // namespace korv
