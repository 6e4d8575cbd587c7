#include "server/features/completion.h"

#include <algorithm>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "expr/registers.h"
#include "frontend/instruction_forms.h"
#include "frontend/instruction_help.h"
#include "server/cursor.h"
#include "source/char_class.h"

namespace korv {
namespace {

using Items = std::vector<lsp::CompletionItem>;

// The forms of `mnemonic`, a line each.
std::string FormsText(std::string_view mnemonic) {
    std::string line = " " + std::string(mnemonic), text;
    for (const std::string& form : FormsOf(CutStatement(line), 0)) {
        text += (text.empty() ? "" : "\n") + form;
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

void AddMnemonics(bool isSmall, Items* items) {
    for (const Keyword& keyword : keywords) {
        lsp::CompletionItem item;
        item.label = Spelled(keyword.word, isSmall);
        item.detail = FormsText(keyword.word);
        std::ranges::replace(item.detail, '\n', '|');
        item.documentation = HelpFor(keyword);
        items->push_back(std::move(item));
    }
}

// Registers and conditions that some form of the statement takes as operand `index`, after the
// operands before it.
void AddRegisters(const StatementView& statement, std::size_t index, bool isSmall, Items* items) {
    std::string line = " " + std::string(statement.mnemonic) + " ";
    for (std::size_t i = 0; i < index; ++i) {
        line += std::string(statement.operands[i].text) + ",";
    }
    const std::string inParentheses[] = {"(HL)", "(BC)", "(DE)",   "(SP)",   "(C)",
                                         "(IX)", "(IY)", "(IX+0)", "(IY+0)", "AF'"};
    const auto add = [&](std::string_view name) {
        const std::string tried = line + std::string(name);
        const StatementView view = CutStatement(tried);
        if (const std::size_t fault = FindFaultyOperand(view); fault > index) {
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
    std::ranges::for_each(inParentheses, add);
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
    typed.remove_prefix(typed.starts_with('"') ? 1 : 0);
    const std::size_t end = typed.find_last_of("/\\") + 1;  // 0 where there is none
    for (std::string& name : filesIn(std::string(typed.substr(0, end)))) {
        lsp::CompletionItem item;
        item.label = std::move(name);
        item.kind = lsp::CompletionKind::file;
        items->push_back(std::move(item));
    }
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
        case LinePrefix::Part::string:
            if (takesFile) {
                AddFiles(prefix.operandText, filesIn, &items);
            }
            break;
        case LinePrefix::Part::operand: {
            if (takesFile) {
                AddFiles(prefix.operandText, filesIn, &items);
                break;
            }
            std::string raised(line);
            std::ranges::transform(raised, raised.begin(), [](char c) { return Raised(c); });
            const StatementView statement = CutStatement(raised);
            const bool isWhole = prefix.word.size() == prefix.operandText.size() ||
                                 prefix.operandText.starts_with('(');
            if (isWhole && prefix.operand <= statement.operands.size()) {
                AddRegisters(statement, prefix.operand, isSmall, &items);
            }
            AddNames(snapshot, &items);
            break;
        }
        case LinePrefix::Part::label:
        case LinePrefix::Part::comment:
            break;
    }
    return items;
}

std::optional<lsp::SignatureHelp> SignaturesFor(std::string_view line) {
    const LinePrefix prefix = CutPrefix(line);
    if (prefix.part != LinePrefix::Part::operand && prefix.part != LinePrefix::Part::string) {
        return std::nullopt;
    }
    const Keyword* const keyword = FindKeyword(prefix.mnemonic);
    if (keyword == nullptr) {
        return std::nullopt;
    }
    std::string raised(line);
    std::ranges::transform(raised, raised.begin(), [](char c) { return Raised(c); });
    lsp::SignatureHelp help;
    help.activeParameter = static_cast<std::uint32_t>(prefix.operand);
    for (std::string& form : FormsOf(CutStatement(raised), prefix.operand)) {
        lsp::Signature signature;
        const std::size_t start = form.find(' ');
        std::string_view rest = start == std::string::npos
                                    ? std::string_view()
                                    : std::string_view(form).substr(start + 1);
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find(','), rest.size());
            signature.parameters.emplace_back(rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        signature.documentation = HelpFor(*keyword);
        const bool hasOperand = signature.parameters.size() > prefix.operand;
        signature.label = std::move(form);
        if (hasOperand) {
            help.signatures.push_back(std::move(signature));
        }
    }
    return help.signatures.empty() ? std::nullopt : std::optional(std::move(help));
}

}  // namespace korv
