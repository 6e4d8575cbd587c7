#include <algorithm>
#include <array>
#include <utility>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "expr/registers.h"
#include "frontend/instruction_forms.h"
#include "frontend/instruction_help.h"
#include "server/features/features.h"
#include "source/char_class.h"

namespace korv {
namespace {

// Numbered as in the protocol.
enum class ItemKind : std::uint8_t {
    function = 3,
    variable = 6,
    keyword = 14,
    file = 17,
    constant = 21,
    operatorSign = 24,
};

// A line up to the cursor. It need not be valid.
struct LinePrefix {
    explicit LinePrefix(std::string_view typed);

    std::string line;    // in upper case outside strings
    StatementView view;  // of `line`
    enum class Part : std::uint8_t { label, mnemonic, operand, string, comment };
    Part part = Part::operand;          // the part with the cursor
    std::size_t operand = 0;            // index of the operand with the cursor, if any
    std::string_view operandText = {};  // of this operand, as typed
};

LinePrefix::LinePrefix(std::string_view typed) : line(Raised(typed)), view(CutStatement(line)) {
    const auto startOf = [this](std::string_view text) { return view.PartOf(text).offset; };
    if (CommentStart(typed) != typed.size()) {
        part = Part::comment;
    } else if (std::ranges::count(typed, '"') % 2 != 0) {
        part = Part::string;
    } else if (view.label.size() == line.size()) {
        part = Part::label;
    } else if (startOf(view.mnemonic) + view.mnemonic.size() == line.size()) {
        part = Part::mnemonic;
    }
    if (!view.operands.empty()) {
        operand = view.operands.size() - 1;
        operandText = WithoutLeadingBlanks(typed.substr(startOf(view.operands.back().text)));
    }
}

// The forms of `mnemonic` on one line.
std::string FormsText(std::string_view mnemonic) {
    const std::string line = " " + std::string(mnemonic);
    std::string text;
    for (const std::string& form : FormsOf(CutStatement(line), 0)) {
        text += (text.empty() ? "" : " | ") + form;
    }
    return text;
}

// True if every use of the word is an error.
bool IsReservedOnly(const Keyword& keyword) {
    return keyword.handler == With<AnswerOnly, MSG_NOT_IMPLEMENTED> ||
           keyword.handler == With<AnswerOnly, MSG_NOT_IN_MACRO>;
}

class ItemList {
  public:
    explicit ItemList(const Query& query)
        : query(query),
          prefix(query.LineBefore()),
          isOpen(prefix.operandText.starts_with('(')),
          isSmall(prefix.line != query.LineBefore()) {}

    [[nodiscard]] Json Make() {
        const Keyword* const keyword = prefix.view.keyword;
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
            case LinePrefix::Part::string:  // for INCLUDE, quotes are part of the name
                if (takesFile && keyword->handler == AssembleBinclude) {
                    AddFiles(prefix.operandText.substr(prefix.operandText.find('"') + 1));
                }
                break;
            case LinePrefix::Part::label:
            case LinePrefix::Part::comment:
                break;
        }
        return std::move(items);
    }

  private:
    // The editor sorts by `order`, then by label; without `order`, by label alone.
    Json& Add(ItemKind kind, std::string label, std::string_view order = "") {
        Json item = {{"label", label}, {"kind", kind}};
        if (!order.empty()) {
            item["sortText"] = std::string(order) + label;
        }
        return items.emplace_back(std::move(item));
    }
    // Adds a word of the language, in lower case if the line contains lower-case letters.
    Json& AddWord(ItemKind kind, std::string_view word, std::string_view order = "") {
        std::string label(word);
        for (char& c : label) {  // other characters of these words have the bit
            c = isSmall ? static_cast<char>(c | 0x20) : c;
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
        const std::size_t end = typed.find_last_of("/\\") + 1;  // 0 if there is no slash
        const std::string& path = query.snapshot.Text(query.file).Path();
        const std::string folder(typed.substr(0, end));
        for (std::string& name : query.workspace.FilesIn(path, folder)) {
            Add(ItemKind::file, std::move(name));
        }
    }

    // True if `word` fits as the operand at the cursor. If the operand begins with a parenthesis,
    // the word is tried in parentheses.
    [[nodiscard]] bool May(std::string_view word) const {
        std::string tried = prefix.line.substr(0, prefix.line.size() - prefix.operandText.size());
        tried += isOpen ? "(" + std::string(word) + ")" : word;
        return FindFaultyOperand(CutStatement(tried)) > prefix.operand;
    }
    [[nodiscard]] bool MayBeValue() const { return May("0"); }

    void AddOperands() {
        const bool isFirstWord = std::ranges::all_of(prefix.operandText.substr(isOpen ? 1 : 0),
                                                     [](char c) { return HasClass(c, CC_NAME); });
        if (isFirstWord) {
            AddRegisters();
        }
        if (!isFirstWord || MayBeValue()) {
            AddNames();
        }
        if (!isFirstWord) {
            AddOperators();
        }
    }

    // Adds the registers and conditions that some form of the statement accepts.
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
        if (!MayBeValue()) {  // else AF' would be read as a value
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
                label = query.snapshot.TextAt(name.definition);
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
    LinePrefix prefix;
    bool isOpen;   // the operand begins with a parenthesis
    bool isSmall;  // the line has lower-case letters outside strings
    Json items = Json::array();
};

// The signature of `form`, with the offsets of its operands.
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
    const LinePrefix prefix(query.LineBefore());
    const StatementView& statement = prefix.view;
    const bool isInOperands =
        prefix.part == LinePrefix::Part::operand || prefix.part == LinePrefix::Part::string;
    if (!isInOperands || statement.keyword == nullptr) {
        return nullptr;
    }
    // All operands of a list are like the first.
    const bool isList = statement.keyword->operands.most > 2;
    const std::size_t operand = isList ? 0 : prefix.operand;
    // The forms that also match the typed part of the operand.
    const auto matching = FormsOf(statement, statement.operands.size());
    Json signatures = Json::array();
    std::size_t active = 0;
    for (const std::string& form : FormsOf(statement, operand)) {
        Json signature = SignatureOf(form, HelpFor(*statement.keyword));
        if (signature["parameters"].size() <= operand) {
            continue;
        }
        if (!matching.empty() && form == matching.front()) {
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
