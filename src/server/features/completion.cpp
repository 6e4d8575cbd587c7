#include "server/features/completion.h"

#include <algorithm>
#include <array>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "expr/registers.h"
#include "expr/token.h"
#include "frontend/instruction_forms.h"
#include "frontend/instruction_help.h"
#include "server/cursor.h"
#include "source/char_class.h"

namespace korv {
namespace {

using Items = std::vector<lsp::CompletionItem>;

// The forms of `mnemonic` in one line.
std::string FormsText(std::string_view mnemonic) {
    const std::string line = " " + std::string(mnemonic);
    std::string text;
    for (const std::string& form : FormsOf(CutStatement(line), 0)) {
        text += (text.empty() ? "" : " | ") + form;
    }
    return text;
}

// In the letters of what has been typed: small ones if that has one.
std::string Spelled(std::string_view word, bool isSmall) {
    std::string spelled(word);
    if (isSmall) {
        for (char& c : spelled) {
            c = HasClass(c, CC_LETTER) ? static_cast<char>(c | 0x20) : c;
        }
    }
    return spelled;
}

bool HasSmallLetter(std::string_view text) {
    return std::ranges::any_of(text, [](char c) { return HasClass(c, CC_LOWER); });
}

// Whether the word does nothing but be refused.
bool IsReservedOnly(const Keyword& keyword) {
    return keyword.handler == With<AnswerOnly, MSG_NOT_IMPLEMENTED> ||
           keyword.handler == With<AnswerOnly, MSG_NOT_IN_MACRO>;
}

void AddMnemonics(bool isSmall, Items* items) {
    for (const Keyword& keyword : keywords) {
        if (IsReservedOnly(keyword)) {
            continue;
        }
        lsp::CompletionItem item;
        item.label = Spelled(keyword.word, isSmall);
        item.detail = FormsText(keyword.word);
        item.documentation = HelpFor(keyword);
        items->push_back(std::move(item));
    }
}

// The operand that is being written.
class OperandInHand {
  public:
    /// `line` is what the cursor is at the end of; `prefix` is made from it.
    OperandInHand(std::string_view line, const LinePrefix& prefix)
        : place(prefix.operand), isOpen(prefix.operandText.starts_with('(')) {
        const std::size_t typed = prefix.word.size() + (isOpen ? 1 : 0);
        isFirstWord = prefix.operandText.size() == typed;
        before = Raised(line.substr(0, line.size() - prefix.operandText.size()));
    }

    /// Whether the mnemonic takes an operand that is `word`, in the parenthesis if one is open,
    /// after the operands before it.
    [[nodiscard]] bool May(std::string_view word) const {
        const std::string tried =
            before + (isOpen ? "(" : "") + std::string(word) + (isOpen ? ")" : "");
        return FindFaultyOperand(CutStatement(tried)) > place;
    }
    [[nodiscard]] bool MayBeValue() const { return May("0"); }
    /// Whether nothing is before the word in hand but a parenthesis.
    [[nodiscard]] bool IsFirstWord() const { return isFirstWord; }
    [[nodiscard]] bool IsOpen() const { return isOpen; }

  private:
    std::size_t place;
    bool isOpen;
    bool isFirstWord;
    std::string before;  // the line up to the operand, in capitals
};

// Registers and conditions that some form of the statement takes.
void AddRegisters(const OperandInHand& operand, bool isSmall, Items* items) {
    const auto add = [&](std::string_view name) {
        if (operand.May(name)) {
            lsp::CompletionItem item;
            item.label = Spelled(name, isSmall);
            item.kind = lsp::CompletionKind::variable;
            item.sortText = "0" + item.label;  // before the names of the program
            items->push_back(std::move(item));
        }
    };
    for (const OperandName& row : operandNames) {
        if (!row.name.empty() && row.name != "FLAGS") {
            add(row.name);
        }
    }
    if (operand.IsOpen()) {
        std::ranges::for_each(std::array{"IX+0", "IY+0"}, add);
        return;
    }
    if (!operand.MayBeValue()) {  // where AF' would be read as one
        add("AF'");
    }
    std::ranges::for_each(
        std::array{"(HL)", "(BC)", "(DE)", "(SP)", "(C)", "(IX)", "(IY)", "(IX+0)", "(IY+0)"}, add);
}

void AddOperators(bool isSmall, Items* items) {
    for (const std::string_view word : {"AND", "OR", "XOR", "NOT", "SHL", "SHR", "MOD", "EXP"}) {
        if (FindWord(word).code != 0) {
            lsp::CompletionItem item;
            item.label = Spelled(word, isSmall);
            item.kind = lsp::CompletionKind::operatorSign;
            item.sortText = "2" + item.label;
            items->push_back(std::move(item));
        }
    }
}

void AddNames(const Snapshot& snapshot, Items* items) {
    for (const Name& name : snapshot.analysis->names) {
        if (name.kind == NameKind::undefined) {
            continue;
        }
        lsp::CompletionItem item;
        item.label = name.text;
        if (name.definition.IsSomewhere()) {  // as its definition spells it
            const Place& at = name.definition;
            item.label = snapshot.Line(at.file, at.line).substr(at.column, at.length);
        }
        item.kind = name.kind == NameKind::label ? lsp::CompletionKind::function
                                                 : lsp::CompletionKind::constant;
        item.detail = name.hasValue ? std::to_string(name.value) : "";
        item.sortText = "1" + item.label;
        items->push_back(std::move(item));
    }
}

void AddFiles(std::string_view typed, const DirectoryListing& filesIn, Items* items) {
    const std::size_t end = typed.find_last_of("/\\") + 1;  // 0 where there is none
    for (std::string& name : filesIn(std::string(typed.substr(0, end)))) {
        lsp::CompletionItem item;
        item.label = std::move(name);
        item.kind = lsp::CompletionKind::file;
        items->push_back(std::move(item));
    }
}

// `line` is what the cursor is at the end of.
void AddOperands(const Snapshot& snapshot, std::string_view line, const LinePrefix& prefix,
                 bool isSmall, Items* items) {
    const OperandInHand operand(line, prefix);
    if (operand.IsFirstWord()) {
        AddRegisters(operand, isSmall, items);
        if (operand.MayBeValue()) {
            AddNames(snapshot, items);
        }
        return;
    }
    AddNames(snapshot, items);
    AddOperators(isSmall, items);
}

}  // namespace

std::vector<lsp::CompletionItem> CompletionsFor(const Snapshot& snapshot, std::string_view line,
                                                const DirectoryListing& filesIn) {
    Items items;
    const LinePrefix prefix = CutPrefix(line);
    const bool isSmall = HasSmallLetter(line);
    const Keyword* const keyword = FindKeyword(prefix.mnemonic);
    const bool takesFile = keyword != nullptr && (keyword->handler == AssembleInclude ||
                                                  keyword->handler == AssembleBinclude);
    switch (prefix.part) {
        case LinePrefix::Part::mnemonic:
            AddMnemonics(isSmall, &items);
            break;
        case LinePrefix::Part::operand:
            if (takesFile) {
                AddFiles(prefix.operandText, filesIn, &items);
            } else if (keyword != nullptr) {
                AddOperands(snapshot, line, prefix, isSmall, &items);
            }
            break;
        case LinePrefix::Part::string:  // INCLUDE takes quotes for a part of the name
            if (takesFile && keyword->handler == AssembleBinclude) {
                AddFiles(prefix.operandText.substr(1), filesIn, &items);
            }
            break;
        case LinePrefix::Part::label:
        case LinePrefix::Part::comment:
            break;
    }
    return items;
}

namespace {

// The form with its operands, whose texts are part of it.
lsp::Signature SignatureOf(std::string form, std::string_view documentation) {
    lsp::Signature signature;
    std::string_view rest = form;
    rest.remove_prefix(std::min(rest.find(' '), rest.size() - 1) + 1);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        signature.parameters.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    signature.documentation = documentation;
    signature.label = std::move(form);
    return signature;
}

}  // namespace

std::optional<lsp::SignatureHelp> SignaturesFor(std::string_view line) {
    const LinePrefix prefix = CutPrefix(line);
    if (prefix.part != LinePrefix::Part::operand && prefix.part != LinePrefix::Part::string) {
        return std::nullopt;
    }
    const Keyword* const keyword = FindKeyword(prefix.mnemonic);
    if (keyword == nullptr) {
        return std::nullopt;
    }
    const std::string raised = Raised(line);
    const StatementView statement = CutStatement(raised);
    // A list goes on with operands like the first one.
    const bool isList = keyword->operands.most > 2;
    const std::size_t operand = isList ? 0 : prefix.operand;
    const auto inHand =  // forms that also fit what has been written of the operand
        FormsOf(statement, std::min(operand + 1, statement.operands.size()));
    lsp::SignatureHelp help;
    help.activeParameter = static_cast<std::uint32_t>(operand);
    for (std::string& form : FormsOf(statement, operand)) {
        lsp::Signature signature = SignatureOf(std::move(form), HelpFor(*keyword));
        if (signature.parameters.size() <= operand) {
            continue;
        }
        if (!inHand.empty() && signature.label == inHand.front()) {
            help.activeSignature = static_cast<std::uint32_t>(help.signatures.size());
        }
        help.signatures.push_back(std::move(signature));
    }
    return help.signatures.empty() ? std::nullopt : std::optional(std::move(help));
}

}  // namespace korv
