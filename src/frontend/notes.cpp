// Advice is looked for in this order: one punctuation mistake; the mnemonic; the operand at fault,
// first its foreign spellings and then its tokens; the operands as a whole; the forms of the
// mnemonic. A message that is only a consequence of an earlier one is then marked as such.

#include "frontend/notes.h"

#include <algorithm>
#include <array>
#include <utility>

#include "codegen/keywords.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "frontend/operand_case.h"
#include "frontend/proposal.h"
#include "frontend/translation.h"
#include "source/char_class.h"

namespace korv {
namespace {

// True for messages about the value of an expression.
bool IsAboutExpression(Status number) {
    constexpr std::array numbers = {MSG_UNRESOLVED,  MSG_NOT_IMMEDIATE,   MSG_BAD_EXPRESSION,
                                    MSG_TOO_COMPLEX, MSG_GENERAL_FAILURE, MSG_BAD_NUMBER};
    return std::ranges::find(numbers, number) != numbers.end();
}

bool IsAboutOperands(Status number) {
    return number == MSG_ILLEGAL_ARGUMENT || number == MSG_ILLEGAL_CONDITION ||
           number == MSG_TOO_MANY_ARGUMENTS || number == MSG_ARGUMENT_EXPECTED;
}

bool Overlap(const LinePart& a, const LinePart& b) {
    return a.offset < b.offset + b.length && b.offset < a.offset + a.length;
}

// True for messages about a value that may be wrong because of a name in it.
bool IsAboutValue(Status number) {
    constexpr std::array numbers = {
        MSG_UNRESOLVED,      MSG_BAD_EXPRESSION,  MSG_ILLEGAL_ARGUMENT, MSG_NOT_IMMEDIATE,
        MSG_NOT_SIGNED_BYTE, MSG_NOT_WORD,        MSG_NOT_BYTE,         MSG_NOT_UNSIGNED_BYTE,
        MSG_OFFSET_TOO_BIG,  MSG_NOT_SIGNED_WORD, MSG_GENERAL_FAILURE,  MSG_BAD_NUMBER};
    return std::ranges::find(numbers, number) != numbers.end();
}

// Words that begin and end blocks in other assemblers. An error about the end of a block is only a
// consequence of the one about its start.
constexpr std::string_view blockStarts =
    "MACRO MAC REPT REPEAT DUP IRP IRPC WHILE FOR STRUCT UNION MODULE PHASE DISP SCOPE PROC "
    "NAMESPACE LUA ENUM FUNC FUNCTION SELECT SWITCH";
constexpr std::string_view blockEnds =
    "ENDM MEND MACEND ENDMACRO ENDR EDUP WEND ENDW NEXT ENDS ENDSTRUCT ENDUNION ENDMODULE ENDMOD "
    "DEPHASE UNPHASE "
    "ENDSCOPE ENDP ENDNAMESPACE ENT EXITM UNTIL ENDREPEAT ENDREP ENDREPT ENDWHILE ENDFOR ENDU "
    "ENDSTRUC ENDPROC ENDLUA ENDE ENDENUM ENDFUNC ENDFUNCTION ENDSELECT ENDSWITCH CASE DEFAULT }";

// `word` without the marks that other assemblers put before directives.
std::string_view Plain(std::string_view word) {
    const std::size_t start = word.find_first_not_of(".#!%");
    return start == std::string_view::npos ? word : word.substr(start);
}

bool IsCondition(std::string_view word) {
    return Plain(word).starts_with("IF") || HoldsWord("COND UNLESS WHEN", word);
}

// The word that ends the block begun by `statement`, if the lines in between mean nothing to Korv.
std::string_view EndOfBlock(const StatementView& statement) {
    const bool isFirst = statement.label == "MACRO" && !statement.hasColon;  // in column 1
    const std::string_view word = Plain(isFirst ? statement.label : statement.mnemonic);
    return HoldsWord("MACRO MAC", word) ? "endm" : HoldsWord("STRUCT STRUC", word) ? "ends" : "";
}

// True if the line of a condition also ends its block, or opens it with a brace.
bool HoldsEnd(const StatementView& statement) {
    return statement.rest.ends_with('{') ||
           std::ranges::any_of(statement.operands, [](const OperandView& operand) {
               return FindToken(operand, "ENDIF") != nullptr ||
                      FindToken(operand, "ENDC") != nullptr;
           });
}

}  // namespace

bool Adviser::TakeRefusedEnd() {
    if (refusedEnds == 0) {
        return false;
    }
    --refusedEnds;
    return true;
}

// A multi-line comment, as in other assemblers. If nothing ends it, it counts as one line.
void Adviser::RememberComment(const FaultView& fault, Advice* advice) {
    const StatementView& statement = fault.statement;
    const LinePart place = advice->place.value_or(LinePart{});
    std::string_view end;
    std::size_t start = 0;
    if (statement.line.substr(place.offset, 2) == "/*") {
        end = "*/";
        start = place.offset + 2;
    } else if (Plain(statement.mnemonic) == "COMMENT") {
        end = statement.rest.substr(0, 1);
        start = statement.PartOf(end).offset + 1;
    }
    const std::int32_t last = end.empty() ? 0 : facts.FindLine(end, start);
    if (last > fault.line) {
        SkipTo(last, fault);
        advice->note = "begin each line of the comment with a semicolon";
        advice->edits.clear();
    } else if (last == 0 && end == "*/") {
        advice->note += ": nothing closes it";
    }
}

std::string_view Adviser::NearestName(std::string_view name) {
    if (names == nullptr) {
        names = std::make_unique<NearWords>(facts.DefinedNames());
    }
    return names->Find(name);
}

std::string Adviser::UnusedName(const std::string& name) {
    std::string unused = name;
    const auto isDefined = [this](const std::string& each) {
        const auto known = facts.FindName(Raised(each));
        return known && known->hasValue && !known->isHere;
    };
    for (int number = 1; FindKeyword(Raised(unused)) != nullptr ||
                         ClassOf(Raised(unused)).kind != KIND_VALUE || isDefined(unused) ||
                         !proposedNames.insert(Raised(unused)).second;) {
        unused = name + std::to_string(++number);
    }
    return unused;
}

Advice Adviser::AdviceFor(const FaultView& fault) {
    Advice advice;
    const bool isAboutStatement = fault.number == MSG_UNKNOWN_INSTRUCTION ||
                                  IsAboutOperands(fault.number) || IsAboutExpression(fault.number);
    if (isAboutStatement && slipBudget > 0) {
        --slipBudget;
        advice = AdviseOnSlip(facts, fault);
    }
    if (advice.edits.empty()) {
        advice = fault.number == MSG_UNKNOWN_INSTRUCTION ? AdviseOnWord(*this, fault)
                 : isAboutStatement                      ? AdviseOnOperands(*this, fault)
                                                         : AdviseOnRest(*this, fault);
        CheckProposal(facts, fault, &advice);
    }
    if (advice.note.empty() && advice.edits.size() == 1 && !advice.edits[0].text.empty()) {
        advice.note = "write " + advice.edits[0].text;
    }
    if (fault.isError) {
        advice.isFollowOn = IsFollowOn(fault, advice) || advice.isFollowOn;
        hasSkippedNames = hasSkippedNames || (IsAboutExpression(fault.number) &&
                                              IsCondition(fault.statement.mnemonic));
        if (!advice.isFollowOn) {
            RememberComment(fault, &advice);
        }
        Remember(fault, advice);
    } else {
        advice.isFollowOn = IsAboutValue(fault.number) &&
                            (UsesOneOf(refusedNames, fault) || UsesOneOf(unsureNames, fault));
    }
    return advice;
}

std::string Adviser::UnknownName(const FaultView& fault, const Advice& advice) const {
    const LinePart place = advice.place.value_or(fault.part);
    const std::string_view name = fault.statement.line.substr(place.offset, place.length);
    const auto known = facts.FindName(name);
    const bool isUnknown = fault.number == MSG_UNRESOLVED || fault.number == MSG_NOT_IMMEDIATE;
    return isUnknown && IsNameText(name) && !(known && known->hasValue) ? std::string(name) : "";
}

bool Adviser::IsFollowOn(const FaultView& fault, const Advice& advice) {
    const StatementView& statement = fault.statement;
    if (fault.file == skippedFile && fault.line > skippedAfter && fault.line <= skippedTo) {
        return true;
    }
    const LinePart place = advice.place.value_or(fault.part);
    const bool isWhole = fault.part.length == 0 &&
                         !fault.isLate;  // the whole statement failed, after an error in it
    if (const auto earlier = errors.find(fault.statementId); earlier != errors.end()) {
        const auto& [places, lastNote, lastNumber] = earlier->second;
        const bool isAgain = std::ranges::any_of(places, [&place, isWhole](const LinePart& each) {
            return isWhole || Overlap(each, place);
        });
        const bool isOpen = lastNote == doubleQuoteNote;  // the rest is a string
        if (isAgain || isOpen || lastNumber == MSG_ILLEGAL_CONDITION ||
            (!advice.note.empty() && advice.note == lastNote)) {
            return true;
        }
    }
    if (const std::string name = UnknownName(fault, advice);
        !name.empty() && answeredNames.contains(name)) {
        return true;
    }
    if (std::ranges::any_of(advice.explains, [this](const std::string& name) {
            return renamedLabels.contains(name);
        })) {
        return true;
    }
    if (fault.number == MSG_NOT_IN_CONDITION && refusedConditions > 0) {
        refusedConditions -= statement.mnemonic == "ELSE" ? 0 : 1;
        return true;
    }
    if (fault.number == MSG_UNKNOWN_INSTRUCTION && hasRefusedTest && refusedConditions > 0 &&
        HoldsWord("ELSE ENDIF ENDC", Plain(statement.mnemonic))) {
        refusedConditions -= Plain(statement.mnemonic) == "ELSE" ? 0 : 1;
        return true;
    }
    if (HoldsWord(blockEnds, Plain(statement.mnemonic)) && hasRefusedBlock) {
        return true;
    }
    if (fault.number == MSG_UNKNOWN_INSTRUCTION) {
        return refusedNames.contains(std::string(statement.mnemonic));
    }
    if (fault.number == MSG_REDEFINITION && (advice.isRepeated || hasRefusedBranch)) {
        return hasRefusedBranch || std::exchange(hasRepeatedFile, true);
    }
    if (fault.number == MSG_UNRESOLVED && namelessDefinitions > 0) {
        --namelessDefinitions;
        return true;
    }
    if (fault.number == MSG_UNRESOLVED && (hasRefusedFile || (hasSkippedNames && fault.isLate))) {
        return true;
    }
    return IsAboutValue(fault.number) &&
           (UsesOneOf(refusedNames, fault) ||
            (fault.number != MSG_UNRESOLVED && UsesOneOf(unsureNames, fault)));
}

bool Adviser::UsesOneOf(const std::unordered_set<std::string>& names, const FaultView& fault) {
    const auto isOne = [&names](std::string_view text) {
        return names.contains(std::string(text));
    };
    const auto uses = [&isOne](const OperandView& operand) {
        return isOne(operand.text) || std::ranges::any_of(operand.tokens, isOne, &Token::text);
    };
    const OperandView* const operand = FocusOf(fault);
    return operand != nullptr ? uses(*operand)
                              : std::ranges::any_of(fault.statement.operands, uses);
}

void Adviser::Remember(const FaultView& fault, const Advice& advice) {
    const StatementView& statement = fault.statement;
    Errors& earlier = errors[fault.statementId];
    earlier.places.push_back(advice.place.value_or(fault.part));
    earlier.lastNote = advice.note;
    earlier.lastNumber = fault.number;
    const bool isRefused =
        fault.number == MSG_UNKNOWN_INSTRUCTION || fault.number == MSG_ARGUMENT_EXPECTED ||
        fault.number == MSG_TOO_MANY_ARGUMENTS || fault.number == MSG_ILLEGAL_ARGUMENT ||
        fault.number == MSG_CONDITIONS_TOO_DEEP;
    if (advice.isFollowOn) {
        return;
    }
    const bool isSecond =  // "DB NAME 5": a name that was meant to be defined
        fault.number == MSG_UNKNOWN_INSTRUCTION && !statement.label.empty() && !statement.hasColon;
    answeredNames.insert(isSecond ? std::string(statement.mnemonic) : UnknownName(fault, advice));
    renamedLabels.insert(advice.explains.begin(), advice.explains.end());
    RememberCondition(fault, advice, isRefused);
    namelessDefinitions += fault.number == MSG_NO_LABEL && advice.names.empty() ? 1 : 0;
    if (fault.number == MSG_UNKNOWN_INSTRUCTION && advice.edits.empty()) {
        for (const OperandView& operand : statement.operands) {  // perhaps names to define
            const auto known = facts.FindName(operand.text);
            if (!known || !known->hasValue) {
                refusedNames.emplace(operand.text);
            }
        }
    }
    if (fault.number == MSG_UNKNOWN_INSTRUCTION && !statement.label.empty()) {
        unsureNames.emplace(statement.label);
    }
    hasRefusedFile = hasRefusedFile || MeantMnemonic(fault, advice) == "INCLUDE";
    hasRefusedBlock = hasRefusedBlock || HoldsWord(blockStarts, Plain(statement.mnemonic)) ||
                      statement.rest.ends_with('{');
    if (const std::string_view end = EndOfBlock(statement); !end.empty()) {
        RememberBlock(fault, end);
    }
    const bool isDefinition = fault.number == MSG_RESERVED_NAME || fault.number == MSG_NO_LABEL ||
                              (statement.mnemonic == "EQU" && fault.number != MSG_REDEFINITION) ||
                              advice.definesName;
    if (!isDefinition) {
        return;
    }
    if (!statement.label.empty()) {
        refusedNames.emplace(statement.label);
    }
    refusedNames.insert(advice.names.begin(), advice.names.end());
}

void Adviser::RememberCondition(const FaultView& fault, const Advice& advice, bool isRefused) {
    const StatementView& statement = fault.statement;
    if ((IsCondition(statement.mnemonic) && HoldsEnd(statement)) ||  // "IF X NOP ENDIF"
        (fault.number == MSG_LABEL_WITHOUT_COLON && HoldsWord("ENDIF ENDC", statement.label))) {
        ++refusedEnds;
    }
    const std::string meant = MeantMnemonic(fault, advice);
    const bool isSlip = fault.number == MSG_UNKNOWN_INSTRUCTION && advice.edits.empty() &&
                        statement.mnemonic.size() <= 3 && statement.mnemonic != "FI" &&
                        EditDistance(statement.mnemonic, "IF") == 1;
    hasRefusedBranch = hasRefusedBranch || HoldsWord("ELSE ELSEIF ELSIF ELIF", Plain(meant));
    if (statement.mnemonic == "ELSE") {  // without an IF, or in place of the ENDIF
        refusedConditions += fault.number == MSG_NOT_IN_CONDITION ? 1 : 0;
        refusedEnds += fault.number == MSG_ILLEGAL_ELSE ? 1 : 0;
    }
    if (isRefused && (HoldsWord("IFDEF IFNDEF", statement.label) || IsCondition(meant) || isSlip)) {
        ++refusedConditions;
        hasRefusedBranch = true;
        hasRefusedTest = hasRefusedTest || advice.edits.empty();
    }
    if (HoldsWord("ENDIF ENDC FI", meant) && fault.number != MSG_NOT_IN_CONDITION &&
        fault.number != MSG_LABEL_NOT_ALLOWED) {
        (refusedConditions > 0 ? refusedConditions : refusedEnds) += refusedConditions > 0 ? -1 : 1;
    }
}

// Treats errors about the name, parameters and body of a macro as consequences: lines of the body
// may be right once the macro is expanded by hand.
void Adviser::RememberBlock(const FaultView& fault, std::string_view end) {
    const StatementView& statement = fault.statement;
    refusedNames.emplace(statement.label);
    if (FindKeyword(statement.label) != nullptr) {  // "MACRO X" in column 1
        refusedNames.emplace(statement.mnemonic);
    }
    for (const OperandView& operand : statement.operands) {
        for (const Token& token : operand.tokens) {
            refusedNames.emplace(token.text);
        }
    }
    SkipTo(std::max(facts.FindLine(end, 0), facts.FindLine(Raised(end), 0)), fault);
}

void Adviser::SkipTo(std::int32_t line, const FaultView& fault) {
    skippedFile = fault.file;
    skippedAfter = fault.line;
    skippedTo = line;
}

}  // namespace korv
