#include "frontend/hints.h"

#include <algorithm>

#include "codegen/keywords.h"
#include "driver/assembler.h"
#include "frontend/hint_table.h"
#include "frontend/messages.h"

namespace korv {
namespace {

// Keeps the word that is nearest to one.
class Nearest {
  public:
    explicit Nearest(std::string_view wanted)
        : wanted(wanted), best(wanted.size() < 6 ? 2 : 3) {}  // one step less is near enough

    void Try(std::string_view word) {
        if (word.size() + best > wanted.size() && wanted.size() + best > word.size() &&
            word.size() <= longestCompared && wanted.size() <= longestCompared) {
            if (const std::size_t steps = EditDistance(wanted, word); steps < best) {
                best = steps;
                found = word;
            }
        }
    }
    [[nodiscard]] std::string Question() const {
        return found.empty() || wanted.size() < 2 ? "" : "did you mean " + std::string(found) + "?";
    }

  private:
    std::string_view wanted;
    std::size_t best;
    std::string_view found;
};

std::string NearestKeyword(std::string_view word) {
    Nearest nearest(word);
    for (const Keyword& keyword : keywords) {
        nearest.Try(keyword.word);
    }
    return nearest.Question();
}

std::string NearestName(const CIdentifierManager& names, std::string_view name) {
    Nearest nearest(name);
    for (std::int32_t i = 0; i < names.RecordCount(); ++i) {
        const CIdentifier& record = names.Record(i);
        if ((record.flags & IDF_RESOLVED) != 0) {
            nearest.Try(record.Name());
        }
    }
    return nearest.Question();
}

std::string Filled(std::string_view note, const Fault& fault) {
    const auto& operands = fault.parts.operands;
    std::string text;
    for (std::size_t i = 0; i < note.size(); ++i) {
        const char sign = note[i] == '%' && i + 1 < note.size() ? note[i + 1] : '\0';
        std::string_view value = note.substr(i, 1);
        switch (sign) {
            case 'w':
                value = fault.parts.word;
                break;
            case 'c':
                value = fault.concerned;
                break;
            case '1':
                value = operands.empty() ? "" : operands[0];
                break;
            case '2':
                value = operands.size() < 2 ? "" : operands[1];
                break;
            default:
                text += value;
                continue;
        }
        text += value;
        ++i;
    }
    return text;
}

// The operands with nothing beside their commas, as the table has them.
std::string Joined(const LineParts& parts) {
    std::string text;
    for (const std::string_view operand : parts.operands) {
        text.append(text.empty() && operand.data() == parts.rest.data() ? "" : ",").append(operand);
    }
    return text;
}

// `rest` is `Joined` of the line.
bool Fits(const HintRow& row, const Fault& fault, std::string_view rest) {
    if ((row.number != anyNumber && row.number != fault.number) ||
        !Matches(fault.parts.word, row.words)) {
        return false;
    }
    switch (row.subject) {
        case Subject::concerned:
            return Matches(fault.concerned, row.pattern);
        case Subject::operand:
            return std::ranges::any_of(fault.parts.operands, [&row](std::string_view operand) {
                return Matches(operand, row.pattern);
            });
        case Subject::rest:
            return Matches(rest, row.pattern);
    }
    return false;
}

// INCLUDE "X", where X is there.
std::string QuotedInclude(CAssembler* assembler, const Fault& fault) {
    std::string_view name = fault.parts.rest;
    if (fault.isLate || name.size() < 3 || !name.starts_with('"') || !name.ends_with('"')) {
        return "";
    }
    name = name.substr(1, name.size() - 2);
    std::string path;
    const bool isThere = assembler->sources->Find(name, &path) == 0 &&
                         platform::KindOf(path) == platform::FileKind::regular;
    return isThere ? "write the name without quotes: INCLUDE " + std::string(name) : "";
}

std::string OperandCounts(const Fault& fault) {
    const Keyword* const row = FindKeyword(fault.parts.word);
    if (row == nullptr) {
        return "";
    }
    const auto [fewest, most, tooMany] = row->operands;
    std::string text = std::string(row->word) + " takes ";
    if (most > 2) {
        return text + "one operand or more";
    }
    constexpr std::string_view counts[] = {"no operand", "one operand", "two operands"};
    if (fewest != most) {
        text += fewest == 0 ? "no or " : "one or ";
    }
    return text.append(counts[static_cast<std::size_t>(most)]);
}

// What the number alone decides, with a look at the rest of the run.
std::string OwnHint(CAssembler* assembler, const Messages& messages, const Fault& fault) {
    const LineParts& parts = fault.parts;
    const bool startsWithKeyword = !parts.hasColon && FindKeyword(parts.label) != nullptr;
    if ((fault.number == MSG_RESERVED_NAME || fault.number == MSG_UNKNOWN_INSTRUCTION) &&
        startsWithKeyword) {
        return "only labels begin in column 1: indent " + std::string(parts.label);
    }
    if (fault.number == MSG_RESERVED_NAME) {
        return "rename it, as " + std::string(parts.label) + "1";
    }
    if (fault.number == MSG_REDEFINITION) {
        const CIdentifier* const first = assembler->identifiers.FindID(fault.concerned, false);
        if (first == nullptr) {
            return "";
        }
        return first->file == 0 ? "-D has defined it"
                                : "the first definition is " + messages.NameOf(first->file) + ":" +
                                      std::to_string(first->line);
    }
    return fault.number == MSG_CANNOT_OPEN ? QuotedInclude(assembler, fault) : "";
}

}  // namespace

std::string HintFor(CAssembler* assembler, const Messages& messages, const Fault& fault) {
    std::string hint = OwnHint(assembler, messages, fault);
    if (!hint.empty()) {
        return hint;
    }
    const std::string rest = Joined(fault.parts);
    const auto* const row = std::ranges::find_if(
        hintTable, [&fault, &rest](const HintRow& each) { return Fits(each, fault, rest); });
    if (row != hintTable.end()) {
        return Filled(row->note, fault);
    }
    switch (fault.number) {
        case MSG_UNKNOWN_INSTRUCTION:
            return NearestKeyword(fault.concerned);
        case MSG_UNRESOLVED:
            return NearestName(assembler->identifiers, fault.concerned);
        case MSG_TOO_MANY_ARGUMENTS:
        case MSG_ARGUMENT_EXPECTED:
            return OperandCounts(fault);
        default:
            return "";
    }
}

}  // namespace korv
