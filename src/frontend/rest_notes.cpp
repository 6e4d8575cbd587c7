// Advice on messages that are about neither the mnemonic nor the form of an operand.

#include <algorithm>
#include <array>

#include "codegen/keywords.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "frontend/terminal_text.h"
#include "source/char_class.h"

namespace korv {
namespace {

// A keyword as a label: an instruction in column 1, or a name that is taken.
Advice AdviseOnReservedName(Adviser& adviser, const StatementView& statement) {
    const std::string_view label = statement.label;
    if (statement.hasColon || statement.mnemonic == "EQU") {  // it is meant as a name
        const std::string name = adviser.UnusedName(std::string(statement.Typed(label)) + "1");
        Advice advice = Replace(statement, label, name,
                                "choose another name here and where it is used, such as " + name);
        advice.names.emplace_back(label);
        advice.newName = name;
        return advice;
    }
    Advice advice =
        Say(statement, label, "indent " + std::string(label) + ": only labels begin in column 1");
    advice.edits = {{LinePart{0, 0}, " "}};
    return advice;
}

// An INCLUDE or BINCLUDE whose file is not found, or cannot be read. Other spellings of its name
// are tried.
Advice AdviseOnFile(const RunFacts& facts, const FaultView& fault) {
    const StatementView& statement = fault.statement;
    const std::string_view name = statement.Typed(statement.rest);
    Advice advice;
    advice.place = statement.PartOf(statement.rest);
    constexpr std::string_view signs = "\"<>'()[]= \t";  // around a name in other assemblers
    const std::size_t first = std::min(name.find_first_not_of(signs), name.size());
    const std::string inner(name.substr(first, name.find_last_not_of(signs) + 1 - first));
    const bool isWrapped = inner.size() < name.size();
    const bool isQuoted = statement.mnemonic == "BINCLUDE" && name.size() > 2 &&
                          name.starts_with('"') && name.ends_with('"');
    const std::string_view meant = isQuoted ? std::string_view(inner) : name;
    if (!fault.reason.empty() && facts.HasFile(meant)) {
        advice.text = "could not read file " + Quoted(meant) + ": " + std::string(fault.reason);
        return advice;
    }
    std::string slashed = inner;
    std::ranges::replace(slashed, '\\', '/');
    const std::string base = slashed.substr(slashed.find_last_of('/') + 1);
    const std::string stem = inner.substr(0, inner.find_last_of('.'));
    if (HoldsWord(". ..", base) || base.empty()) {
        advice.note = "write the name of a file, not of a directory";
        return advice;
    }
    const std::size_t quote = name.find('"', 1);
    if (name.size() > 1 && name.front() == '"' && quote == std::string_view::npos) {
        advice.note = "close the name with a double quote, or remove the one before it";
        return advice;
    }
    for (const std::string& candidate :
         {inner, std::string(name.substr(first, std::min(quote, name.size()) - first)), slashed,
          inner + ".kor", inner + ".asm", inner + ".inc", inner + ".z80", stem + ".kor", base,
          "../" + slashed}) {
        if (facts.HasFile(candidate)) {
            advice.edits = {{*advice.place, candidate}};
            advice.note = "write " + std::string(statement.mnemonic) + " " + candidate;
            return advice;
        }
    }
    if (statement.typed.data() == statement.line.data()) {  // two lines, joined
        advice.note =
            "check for a backslash at the end of the line: it joins the next line to the name";
        return advice;
    }
    advice.note = isWrapped && statement.mnemonic == "INCLUDE"
                      ? "write the name without quotes or brackets"
                      : "check the name";
    if (!inner.starts_with('/')) {
        advice.note += "; searched: " + facts.SearchedDirectories();
    }
    return advice;
}

Advice AdviseOnFarJump(const StatementView& statement) {
    Advice advice;
    const std::string_view target =
        statement.operands.empty() ? statement.rest : statement.operands.back().text;
    if (IsNumberedLabel(statement)) {
        return Say(statement, target, std::string(numberedLabelNote));
    }
    if (target.starts_with('+') || target.starts_with('-')) {  // a distance
        const std::string address = "$" + std::string(target);
        return Replace(statement, target, address,
                       "write " + address + ": a relative jump takes an address");
    }
    if (target.ends_with("-$")) {  // a distance
        advice = Replace(statement, target.substr(target.size() - 2), "", "");
        advice.note = WriteNote(statement, advice.edits) + ": a relative jump takes an address";
        advice.place = statement.PartOf(target);
        return advice;
    }
    if (target.find("-$") != std::string_view::npos) {
        return Say(statement, target, "write the label alone: a relative jump takes an address");
    }
    if (statement.mnemonic == "JR") {
        advice.edits = {{statement.PartOf(statement.mnemonic), "JP"}};
        advice.note = "use JP: JR reaches from 126 bytes before to 129 bytes after its own address";
    } else {
        advice.edits = {NewStatement(statement, "DEC B\n\tJP NZ," + std::string(statement.rest))};
        advice.note =
            "use DEC B and JP NZ: DJNZ reaches from 126 bytes before to 129 bytes after its own "
            "address";
    }
    return advice;
}

// A label in front of IF, ELSE or ENDIF.
Advice AdviseOnLabel(const StatementView& statement) {
    const std::size_t end = statement.label.size() + (statement.hasColon ? 1 : 0);
    return Replace(statement, statement.line.substr(0, end),
                   std::string(statement.Typed(statement.label)) + ":\n",
                   "put the label on a line of its own");
}

Advice AdviseOnRedefinition(const RunFacts& facts, const FaultView& fault) {
    const StatementView& statement = fault.statement;
    Advice advice;
    const KnownName first = facts.FindName(statement.label).value_or(KnownName{});
    if (first.isCommandLine) {
        advice.note = "remove the line or the -D: the command line defines the name";
    } else if (first.isHere) {
        advice.note = "include the file once: this line has been read before";
        advice.isRepeated = true;
    } else {
        advice.note = "rename one of them: the first definition is " + first.where;
        advice.first = first.definition;
    }
    return advice;
}

// Brackets with nothing in them.
Advice AdviseOnEmptyBrackets(const StatementView& statement) {
    for (const OperandView& operand : statement.operands) {
        if (operand.text.starts_with('(') &&
            FirstWord(WithoutLeadingBlanks(operand.text.substr(1))) == ")") {
            Advice advice = Say(statement, operand.text, "add the address or the register");
            advice.text = "nothing between the brackets";
            return advice;
        }
    }
    return {};
}

// "LD A,(X)+1", which does not read memory.
Advice AdviseOnPartInBrackets(const StatementView& statement) {
    for (const OperandView& operand : statement.operands) {
        if (operand.text.starts_with('(') && !operand.text.ends_with(')')) {
            return Say(statement, operand.text,
                       "load from memory first: brackets around a part of an operand only group");
        }
    }
    return {};
}

Advice AdviseOnRange(const FaultView& fault) {
    const StatementView& statement = fault.statement;
    Advice advice;
    const std::string_view part = statement.line.substr(fault.part.offset, fault.part.length);
    if (part == "$" && HoldsWord("DB DEFB", statement.mnemonic)) {
        return Replace(statement, part, "\"$\"",
                       "write \"$\" for the character: $ alone is the address");
    }
    if (fault.number == MSG_NOT_UNSIGNED_BYTE) {
        advice.note = HoldsWord("IN OUT", statement.mnemonic)
                          ? "use a port from 0 to 255"
                          : "write words with DW, or X AND 255 for the low byte";
        return advice;
    }
    advice.note = "use a value from -128 to 255, or X AND 255 for the low byte";
    return advice;
}

// A value that turned out to be wrong after its line was assembled. The core reports no details.
Advice AdviseOnFailure(const FaultView& fault) {
    const StatementView& statement = fault.statement;
    Advice advice = AdviseOnEmptyBrackets(statement);
    if (!advice.place && statement.mnemonic == "EQU") {
        advice.text = "a value that waits for this name does not fit";
        advice.note = "check the jumps and values that use " + std::string(statement.label);
    }
    return advice;
}

struct FixedNote {
    Status number;
    std::string_view note;
};

constexpr auto fixedNotes = std::to_array<FixedNote>({
    {MSG_NO_LABEL, "begin the name in column 1: NAME: EQU 5"},
    {MSG_NOT_IN_MACRO, "remove the line: there are no macros"},
    {MSG_FILES_TOO_DEEP, "check whether the file includes itself"},
    {MSG_CONDITIONS_TOO_DEEP, "check for a missing ENDIF"},
    {MSG_NOT_IN_CONDITION, "add the IF, or remove the line: no condition is open"},
    {MSG_ILLEGAL_ELSE, "write ENDIF, or remove it: an IF has one ELSE"},
    {MSG_LABEL_TOO_LONG, "shorten the name to 256 characters"},
    {MSG_LINE_TOO_LONG,
     "break the line, or accept more by --line-length: the comment and the line end count too"},
    {MSG_NO_CLOSING_QUOTE, closeQuoteNote},
    {MSG_EXPECTED_ARGUMENT, "add the operand, or remove the comma"},
    {MSG_LABEL_WITHOUT_COLON, "end the label with a colon"},
    {MSG_COMMAND_LINE_SKIPPED, "begin the comment with a semicolon"},
});

}  // namespace

Advice AdviseOnRest(Adviser& adviser, const FaultView& fault) {
    const StatementView& statement = fault.statement;
    Advice advice;
    switch (fault.number) {
        case MSG_RESERVED_NAME:
            return AdviseOnReservedName(adviser, statement);
        case MSG_NO_LABEL:
            if (advice = AdviseOnNameSecond(statement); advice.place) {
                return advice;
            }
            break;
        case MSG_CANNOT_OPEN:
            return AdviseOnFile(adviser.Facts(), fault);
        case MSG_REDEFINITION:
            return AdviseOnRedefinition(adviser.Facts(), fault);
        case MSG_OFFSET_TOO_BIG:
            return AdviseOnFarJump(statement);
        case MSG_LABEL_NOT_ALLOWED:
            return AdviseOnLabel(statement);
        case MSG_NOT_BYTE:
            if (statement.mnemonic == "DJNZ") {
                return AdviseOnFarJump(statement);
            }
            return fault.isError ? AdviseOnRange(fault) : AdviseOnPartInBrackets(statement);
        case MSG_NOT_UNSIGNED_BYTE:
            return std::ranges::count(statement.rest, '"') % 2 == 0
                       ? AdviseOnRange(fault)
                       : AdviseOnOperands(adviser, fault);
        case MSG_TEXT_AFTER_STRING:
            advice.note =
                statement.rest.find_first_of("+|", statement.rest.rfind('"')) !=
                        std::string_view::npos
                    ? "write the last character by itself, as in DB \"H\",\"i\"+128"
                    : "use DB for several operands: a double quote in a string is the number 34";
            return advice;
        case MSG_NOT_IMPLEMENTED:
            return Say(statement, statement.mnemonic,
                       HoldsWord("DD DEFD", statement.mnemonic)
                           ? "write two words with DW, the low one first"
                           : std::string(macroNote));
        case MSG_SYSTEM_ERROR:
        case -1:
            return AdviseOnFailure(fault);
        default:
            break;
    }
    if (statement.mnemonic.starts_with('=')) {
        advice.note = "write ORG and the address in place of *=";
        return advice;
    }
    const auto* const row = std::ranges::find(fixedNotes, fault.number, &FixedNote::number);
    if (row != fixedNotes.end()) {
        advice.note = row->note;
    }
    return advice;
}

}  // namespace korv
