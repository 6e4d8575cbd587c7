#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "expr/registers.h"
#include "expr/token.h"
#include "frontend/instruction_forms.h"
#include "frontend/instruction_help.h"
#include "server/features/features.h"
#include "server/line_prefix.h"
#include "source/char_class.h"

namespace korv {
namespace {

/// Numbers of the protocol.
enum class ItemKind : std::uint8_t {
    function = 3,
    variable = 6,
    keyword = 14,
    file = 17,
    constant = 21,
    operatorSign = 24,
};

// The forms of `mnemonic` in one line.
std::string FormsText(std::string_view mnemonic) {
    const std::string line = " " + std::string(mnemonic);
    std::string text;
    for (const std::string& form : FormsOf(CutStatement(line), 0)) {
        text += (text.empty() ? "" : " | ") + form;
    }
    return text;
}

// Whether the word does nothing but be refused.
bool IsReservedOnly(const Keyword& keyword) {
    return keyword.handler == With<AnswerOnly, MSG_NOT_IMPLEMENTED> ||
           keyword.handler == With<AnswerOnly, MSG_NOT_IN_MACRO>;
}

class ItemList {
  public:
    explicit ItemList(const Query& query)
        : query(query),
          line(query.LineBefore()),
          prefix(CutPrefix(line)),
          isOpen(prefix.operandText.starts_with('(')),
          keyword(FindKeyword(prefix.mnemonic)),
          isSmall(std::ranges::any_of(line, [](char c) { return HasClass(c, CC_LOWER); })) {}

    [[nodiscard]] Json Make() {
        const bool takesFile = keyword != nullptr && (keyword->handler == AssembleInclude ||
                                                      keyword->handler == AssembleBinclude);
        switch (prefix.part) {
            case LinePrefix::Part::mnemonic:
                AddMnemonics();
                break;
            case LinePrefix::Part::operand:
                if (takesFile) {
                    AddFiles(prefix.operandText);
                } else if (keyword != nullptr) {
                    AddOperands();
                }
                break;
            case LinePrefix::Part::string:  // INCLUDE takes quotes for a part of the name
                if (takesFile && keyword->handler == AssembleBinclude) {
                    AddFiles(prefix.operandText.substr(1));
                }
                break;
            case LinePrefix::Part::label:
            case LinePrefix::Part::comment:
                break;
        }
        return std::move(items);
    }

  private:
    // `order` comes before the label where the editor sorts; without it the label decides.
    Json& Add(ItemKind kind, std::string label, std::string_view order = "") {
        Json item = {{"label", label}, {"kind", kind}};
        if (!order.empty()) {
            item["sortText"] = std::string(order) + label;
        }
        return items.emplace_back(std::move(item));
    }
    // A word of the language, in the letters of what has been typed.
    Json& AddWord(ItemKind kind, std::string_view word, std::string_view order = "") {
        std::string label(word);
        for (char& c : label) {
            c = isSmall && HasClass(c, CC_LETTER) ? static_cast<char>(c | 0x20) : c;
        }
        return Add(kind, std::move(label), order);
    }

    void AddMnemonics() {
        for (const Keyword& each : keywords) {
            if (!IsReservedOnly(each)) {
                Json& item = AddWord(ItemKind::keyword, each.word);
                item["detail"] = FormsText(each.word);
                item["documentation"] = Markdown(HelpFor(each));
            }
        }
    }

    void AddFiles(std::string_view typed) {
        const std::size_t end = typed.find_last_of("/\\") + 1;  // 0 where there is none
        const std::string& path = query.snapshot.File(query.file).text->Path();
        const std::string folder(typed.substr(0, end));
        for (std::string& name : query.workspace.FilesIn(path, folder)) {
            Add(ItemKind::file, std::move(name));
        }
    }

    // Whether the mnemonic takes an operand that is `word`, in the parenthesis if one is open,
    // after the operands before it.
    [[nodiscard]] bool May(std::string_view word) const {
        std::string tried = Raised(line.substr(0, line.size() - prefix.operandText.size()));
        tried += isOpen ? "(" + std::string(word) + ")" : word;
        return FindFaultyOperand(CutStatement(tried)) > prefix.operand;
    }
    [[nodiscard]] bool MayBeValue() const { return May("0"); }

    void AddOperands() {
        const bool isFirstWord = prefix.operandText.size() == prefix.word.size() + (isOpen ? 1 : 0);
        if (!isFirstWord) {
            AddNames();
            AddOperators();
            return;
        }
        AddRegisters();
        if (MayBeValue()) {
            AddNames();
        }
    }

    // Registers and conditions that some form of the statement takes.
    void AddRegisters() {
        const auto add = [this](std::string_view name) {
            if (May(name)) {
                AddWord(ItemKind::variable, name, "0");  // before the names of the program
            }
        };
        for (const OperandName& row : operandNames) {
            if (!row.name.empty() && row.name != "FLAGS") {
                add(row.name);
            }
        }
        if (isOpen) {
            std::ranges::for_each(std::array{"IX+0", "IY+0"}, add);
            return;
        }
        if (!MayBeValue()) {  // where AF' would be read as one
            add("AF'");
        }
        std::ranges::for_each(
            std::array{"(HL)", "(BC)", "(DE)", "(SP)", "(C)", "(IX)", "(IY)", "(IX+0)", "(IY+0)"},
            add);
    }

    void AddNames() {
        for (const Name& name : query.snapshot.analysis->names) {
            if (name.kind == NameKind::undefined) {
                continue;
            }
            std::string_view label = name.text;
            if (name.definition.IsSomewhere()) {  // as its definition spells it
                const Place& at = name.definition;
                label = query.snapshot.Line(at.file, at.line).substr(at.column, at.length);
            }
            const bool isLabel = name.kind == NameKind::label;
            Json& item =
                Add(isLabel ? ItemKind::function : ItemKind::constant, std::string(label), "1");
            if (name.hasValue) {
                item["detail"] = std::to_string(name.value);
            }
        }
    }

    void AddOperators() {
        for (const char* const word : {"AND", "OR", "XOR", "SHL", "SHR", "MOD", "EXP"}) {
            AddWord(ItemKind::operatorSign, word, "2");
        }
    }

    const Query& query;
    std::string_view line;  // up to the cursor
    LinePrefix prefix;
    bool isOpen;  // the operand in hand begins with a parenthesis
    const Keyword* keyword;
    bool isSmall;
    Json items = Json::array();
};

// The form with the offsets of its operands.
Json SignatureOf(const std::string& form, std::string_view documentation) {
    Json parameters = Json::array();
    for (std::size_t at = form.find(' '); at < form.size();) {
        const std::size_t end = std::min(form.find(',', ++at), form.size());
        parameters.push_back({{"label", {at, end}}});
        at = end;
    }
    return {
        {"label", form}, {"parameters", parameters}, {"documentation", Markdown(documentation)}};
}

}  // namespace

Json Completions(const Query& query) {
    return ItemList(query).Make();
}

Json Signatures(const Query& query) {
    const std::string_view line = query.LineBefore();
    const LinePrefix prefix = CutPrefix(line);
    const bool isInOperands =
        prefix.part == LinePrefix::Part::operand || prefix.part == LinePrefix::Part::string;
    const Keyword* const keyword = FindKeyword(prefix.mnemonic);
    if (!isInOperands || keyword == nullptr) {
        return nullptr;
    }
    const std::string raised = Raised(line);
    const StatementView statement = CutStatement(raised);
    // A list goes on with operands like the first one.
    const bool isList = keyword->operands.most > 2;
    const std::size_t operand = isList ? 0 : prefix.operand;
    const auto inHand =  // forms that also fit what has been written of the operand
        FormsOf(statement, std::min(operand + 1, statement.operands.size()));
    Json signatures = Json::array();
    std::size_t active = 0;
    for (const std::string& form : FormsOf(statement, operand)) {
        Json signature = SignatureOf(form, HelpFor(*keyword));
        if (signature["parameters"].size() <= operand) {
            continue;
        }
        if (!inHand.empty() && form == inHand.front()) {
            active = signatures.size();
        }
        signatures.push_back(std::move(signature));
    }
    return signatures.empty() ? Json()
                              : Json{{"signatures", signatures},
                                     {"activeSignature", active},
                                     {"activeParameter", operand}};
}

}  // namespace korv
