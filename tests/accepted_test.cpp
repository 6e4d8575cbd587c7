// Combines every keyword with single operands, pairs and some triples. The statements in encodings/ must be accepted,
// with other numbers too; refusals.txt describes the bytes and messages of all other statements. Bytes and messages are
// compared for each statement, so that no statement can silently assemble as another one.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "codegen/keywords.h"
#include "driver/assembler.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "run.h"
#include "table.h"

namespace korv_test {
namespace {

constexpr std::uint32_t mostBytes = 0x20000;  // the limit for all statements with one keyword together

// Added at the end of each source, to define the names that have no value yet when an operand uses them.
constexpr const char* lateSource = "SOON: EQU 18\nLATE: EQU 300\nFAR: EQU 65535+1\n";
const std::map<std::string, int> worth = {{"SOON", 18},   {"+SOON", 18},      {"LATE", 300}, {"-LATE", -300},
                                          {"FAR", 65536}, {"65535+1", 65536}, {"\"A\"", 65}};

// An operand.
struct Shape {
    std::string text;
    std::string group;  // the group of an operand that is not a value; otherwise the status
    int status;         // the status of the expression; -1: the operand is not a value
};
using Operands = std::vector<const Shape*>;

// A line of a table: statements, and their expected bytes and messages.
struct Row {
    std::string line;
    Strings columns;
    std::vector<std::set<const Shape*>> operands = {};  // for each operand, the shapes that match it
    Strings fields = {};  // for each operand of a named statement: byte, word, disp, jump or empty
    bool isUsed = false;
};
enum Column { ABOUT, MNEMONICS, OPERANDS, BYTES, MESSAGES };

struct Outcome {
    std::string bytes;
    std::multiset<std::string> messages;
    std::string line;  // the line of the table that describes this outcome
};

std::string Hex(int value, std::size_t bytes) {
    const char raw[] = {static_cast<char>(value), static_cast<char>(value >> 8)};
    return ToHex({raw, bytes});
}

// Hexadecimal bytes, shortened for the report of a failure.
std::string Brief(const std::string& hex) {
    return hex.size() <= 40 ? hex : hex.substr(0, 40) + "... of " + std::to_string(hex.size() / 2) + " bytes ";
}

// The text without its parentheses. For an index operand, only the displacement.
std::string Inner(const std::string& text) {
    const std::size_t sign = text.starts_with("(I") ? text.find_first_of("+-") : std::string::npos;
    const std::size_t start = sign != std::string::npos ? sign : text[0] == '(' ? 1 : 0;
    return text.substr(start, text.size() - start - (start == 0 ? 0 : 1));
}

// The pattern for all values of the same form: n, (n), (IX+n) or (IY+n).
std::string FormOf(const std::string& text) {
    const std::size_t cut = text.size() - Inner(text).size();
    return cut == 0 ? "n" : cut == 2 ? "(n)" : text.substr(0, 3) + "+n)";
}

// True if `pattern` matches the operand. `isBare`: parentheses have no meaning in this statement.
bool IsLike(const Shape& shape, const std::string& pattern, bool isBare) {
    const bool isInner = isBare && FormOf(shape.text) == "(n)" && shape.group != "(r)";
    const std::string word = isInner ? Inner(shape.text) : shape.text;
    const std::string group = isInner ? Inner(shape.group) : shape.group;
    const int status = shape.status;
    const std::string form = status < 0 ? group : FormOf(word);
    const char* const state = status == 0 ? "*0" : status == 12 ? "*12" : status > 0 ? "*bad" : "";
    return pattern == "x" || pattern == word || pattern == form || pattern == state ||
           (pattern == "(xy+n)" && form[1] == 'I');
}

// The value of `text` at `address`. An undefined name counts as 0.
int Evaluate(const std::string& text, int address) {
    if (worth.contains(text)) {
        return worth.at(text);
    }
    const bool isHere = text == "$" || text.find_first_of("+-") == 1;
    const std::size_t start = text[0] == '$' ? 1 : 0;
    const long number = std::strtol(&text[start], nullptr, start == 1 && !isHere ? 16 : 10);
    return static_cast<int>(number) + (isHere ? address : 0);
}

// The field for the number of `operand` in the bytes of a named statement. Empty if the operand is not a number, or
// if the number is part of the opcode.
std::string FieldOf(const std::string& operand, const Row& row) {
    const int value = Evaluate(Inner(operand), korv::comStart);
    const int distance = value - static_cast<int>(korv::comStart) - 2;
    const bool isNumber = Inner(operand).find_first_of("$+-0123456789") == 0;
    const bool isWord = row.columns[BYTES].ends_with(Hex(value, 2)) && row.fields != Strings{"disp"};
    return !isNumber                                        ? ""
           : FormOf(operand)[1] == 'I'                      ? "disp"
           : isWord                                         ? "word"
           : row.columns[BYTES].ends_with(Hex(value, 1))    ? "byte"
           : row.columns[BYTES].ends_with(Hex(distance, 1)) ? "jump"
                                                            : "";
}

// The bytes and messages of each line of a source, except error 12, which is reported at the end for undefined names.
// Empty if there are too many bytes.
std::vector<Outcome> Assemble(const std::string& source, std::size_t lines) {
    static std::string first;  // the first statement; printed if a directive uses up the memory, which ends the process
    [[maybe_unused]] static const int isSet = std::atexit([] {
        std::fputs(first.empty() ? "" : ("mark large counts as undriven in refusals.txt; " + first).c_str(), stderr);
    });
    first = source.substr(0, source.find('\n') + 1);
    WriteFile("Main.Kor", source + lateSource);
    std::FILE* const console = std::fopen("console", "w");
    bool isTooLarge = false;
    {
        korv::CAssembler assembler(console, static_cast<int>(4 * lines));
        assembler.maxImage = mostBytes;
        assembler.RunFromCommandLine("Main.Kor", "", "D");
        EXPECT_LE(assembler.binary.Position(), mostBytes) << "mark large counts as undriven in refusals.txt; " << first;
        isTooLarge = assembler.binary.Position() > mostBytes;
    }
    first.clear();
    std::fclose(console);
    if (isTooLarge) {
        return {};
    }
    std::vector<Outcome> outcomes;
    std::ifstream listing("Debug.Out");
    for (std::string line; std::getline(listing, line);) {
        outcomes.push_back({Split(line.substr(line.find('[') + 1), ']').at(0), {}, ""});
    }
    std::ifstream messages("console");
    for (std::string line; std::getline(messages, line);) {
        std::size_t at = 0;
        int number = 0;
        char kind[8];
        line.erase(0, line.find("Main.Kor("));
        if (std::sscanf(line.c_str(), "Main.Kor(%zu) : %7s X%d", &at, kind, &number) == 3 && number != 12) {
            const std::string text = line.substr(std::min(line.find(" ["), line.size()));
            outcomes.at(at - 1).messages.insert(kind + (" " + std::to_string(number)) + text);
        }
    }
    return outcomes;
}

struct Crossing {
    std::deque<Shape> shapes;
    std::string bareMnemonics;  // instructions for which parentheses have no meaning
    std::deque<Row> rows;
    std::vector<Row*> rowsOfKeyword;
    int address = 0;
    std::vector<Encoding> encodings;
    std::size_t differences = 0;

    void Differ(const std::string& text) {
        if (++differences <= 10) {
            ADD_FAILURE() << text;
        }
    }

    Crossing() {
        std::ifstream table(ProjectPath("tests/refusals.txt"));
        int number = 0;
        for (std::string line; std::getline(table, line);) {
            const std::string place = "refusals.txt:" + std::to_string(++number) + ": ";
            const Strings columns = Split(std::regex_replace(line, std::regex(" *([|,]) *"), "$1"), '|');
            if (line.starts_with("operands ")) {
                const std::string group = columns[0].substr(columns[0].find(' ') + 1);
                const int status = std::isdigit(group[0]) != 0 ? std::stoi(group) : -1;
                for (std::size_t i = 1; i < columns.size(); ++i) {
                    shapes.push_back({columns[i], group, status});
                }
            } else if (line.starts_with("bare ")) {
                bareMnemonics = "/" + columns[1] + "/";
            } else if (!line.empty() && line[0] != '#') {
                AddRow(place + line, columns);
            }
        }
        for (const std::string& path : TablesIn("encodings")) {
            for (const Encoding& encoding : ReadEncodings(path)) {
                const std::string& text = encoding.instruction;
                const Strings words = Split(text + " ", ' ');
                AddRow(text, {"named", words[0], words[1], encoding.bytes});
                encodings.push_back(encoding);
            }
        }
    }

    void AddRow(const std::string& line, Strings columns) {
        columns.resize(MESSAGES + 1);
        const std::string mnemonic = "/" + Split(columns[MNEMONICS], '/')[0] + "/";
        const bool isBare = bareMnemonics.find(mnemonic) != std::string::npos;
        Row& row = rows.emplace_back(Row{line, columns});
        const bool hasNone = columns[OPERANDS].empty() || columns[OPERANDS] == "...";
        for (const std::string& operand : hasNone ? Strings() : Split(columns[OPERANDS], ',')) {
            row.fields.push_back(columns[ABOUT] == "named" ? FieldOf(operand, row) : "");
            const std::string patterns = row.fields.back().empty() ? operand : FormOf(operand);
            std::set<const Shape*>& set = row.operands.emplace_back();
            for (const std::string& pattern : Split(patterns, '/')) {
                for (const Shape& shape : shapes) {
                    if (IsLike(shape, pattern, isBare)) {
                        set.insert(&shape);
                    }
                }
            }
            if (set.empty()) {
                Differ(line + ": none of the operands at the top matches " + operand);
            }
        }
    }

    // The first row for the current keyword that has the subject `about` and matches `operands`.
    const Row& First(const std::string& about, const Operands& operands) {
        static const Row none{"", {"", "", "", "", "no line decides"}};
        const auto isIn = [](const Shape* shape, const auto& set) { return set.contains(shape); };
        for (Row* const row : rowsOfKeyword) {
            if (row->columns[ABOUT] == about &&
                (row->columns[OPERANDS] == "..." || std::ranges::equal(operands, row->operands, isIn))) {
                row->isUsed = true;
                return *row;
            }
        }
        return none;
    }

    // Adds the messages of `row` to `outcome`. `it` is the operand that they are about.
    static void Tell(const Row& row, const Operands& operands, const Shape& it, Outcome* outcome) {
        outcome->line = row.line;
        for (std::string message : row.columns[MESSAGES].empty() ? Strings() : Split(row.columns[MESSAGES], ',')) {
            const int status = message.ends_with("S' [it]") && it.status == 24 ? 16 : it.status;
            message = ReplaceAll(ReplaceAll(message, "S'", "S"), "S", std::to_string(status));
            message = ReplaceAll(message, "[bare]", "[" + Inner(it.text) + "]");
            message = ReplaceAll(message, "[it]", "[" + it.text + "]");
            const Shape& first = operands.empty() ? it : *operands[0];
            outcome->messages.insert(ReplaceAll(message, "[first]", "[" + first.text + "]"));
        }
    }

    // The outcome of the accepted statement in `row`, with the values of `operands` in place of its own.
    Outcome Accept(const Row& row, const Operands& operands) {
        Outcome outcome{row.columns[BYTES], {}, ""};
        Tell(row, operands, shapes[0], &outcome);
        for (std::size_t i = 0; i < row.fields.size(); ++i) {
            const std::string& field = row.fields[i];
            const Shape& operand = *operands[i];
            const bool isBad = operand.status != 0 && operand.status != 12;
            int value = isBad ? 0 : Evaluate(Inner(operand.text), address);
            value -= field == "jump" && (operand.status == 0 || value != 0) ? address + 2 : 0;
            const std::size_t size = field.empty() ? 0 : field == "word" ? 4 : 2;
            const std::size_t at = field == "disp" ? 4 : outcome.bytes.size() - size;
            outcome.bytes.replace(at, size, Hex(value, size / 2));
            const int low = field == "word" ? -32768 : -128;
            const int high = field == "word" ? 65535 : field == "byte" ? 255 : 127;
            if (!field.empty() && (isBad || value < low || value > high)) {
                const char* const state = isBad ? "bad " : operand.status == 0 ? "wide " : "late ";
                const Row& exception = First(state + field, operands);
                Tell(exception, operands, operand, &outcome);
                if (exception.columns[BYTES] == "-1") {
                    outcome.bytes.resize(outcome.bytes.size() - 2);
                    break;
                }
            }
        }
        return outcome;
    }

    // The expected outcome of the statement with these operands.
    Outcome Decide(Operands operands) {
        if (const Row& named = First("named", operands); !named.line.empty()) {
            return Accept(named, operands);
        }
        const auto empty = std::ranges::find(operands, "()", &Shape::text);
        if (empty != operands.end()) {
            const bool isLast = empty + 1 == operands.end();
            operands.erase(empty);
            Outcome outcome = Decide(operands);
            outcome.messages.insert(isLast ? "error -1" : "error 1 [KO_Args.Add() failed!]");
            return outcome;
        }
        const Row& row = First("refused", operands);
        Outcome outcome{row.columns[BYTES], {}, ""};
        Tell(row, operands, operands.empty() ? shapes[0] : *operands.back(), &outcome);
        if (const Strings words = Split(outcome.bytes, ' '); words.size() == 3) {
            operands.back() = &*std::ranges::find(shapes, words[2], &Shape::text);
            const std::string& bytes = First("named", operands).columns[BYTES];
            outcome.bytes = bytes.substr(words[0] == "last" && !bytes.empty() ? bytes.size() - 2 : 0, 2);
        }
        return outcome;
    }

    // The table of forms must contain the statement if and only if it was accepted, whatever its values.
    void CompareForms(const std::string& text, const Outcome& got) {
        const std::string line = " " + text;
        const korv::StatementView view = korv::CutStatement(line);
        const auto says = [&got](const std::string& numbers) {
            return std::ranges::any_of(got.messages, [&](const std::string& message) {
                return message.starts_with("error") && Contains(numbers, " " + Split(message + " ", ' ')[1] + " ");
            });
        };
        const auto isBad = [](const korv::OperandView& it) {
            return it.what.kind == korv::KIND_VALUE &&
                   korv::FindExpressionFault(it).fault != korv::ExpressionFault::none;
        };
        const bool hasNumber = korv::HoldsWord("BIT SET RES RST IM", view.mnemonic) && !view.operands.empty() &&
                               view.operands[0].what.kind == korv::KIND_VALUE && !view.operands[0].IsIndexed();
        const bool isJump = view.mnemonic == "DJNZ";  // DJNZ accepts any word as a name
        if (!isJump && !hasNumber && !says(" 17 18 19 20 24 25 34 51 55 ") &&
            std::ranges::none_of(view.operands, isBad) && korv::HasForm(view) == says(" 1 13 14 16 54 -1 ")) {
            Differ(text + ": accepted but not in the table of forms, or the reverse");
        }
    }

    // Assembles all statements with `keyword` as one source, and compares the outcomes.
    void Cross(const std::string& keyword) {
        rowsOfKeyword.clear();
        for (Row& row : rows) {
            const std::string words = "/" + row.columns[MNEMONICS] + "/";
            if (words == "/*/" || words.find("/" + keyword + "/") != std::string::npos) {
                rowsOfKeyword.push_back(&row);
            }
        }
        std::vector<std::pair<std::string, Outcome>> all;
        std::string source;
        address = korv::comStart;
        const auto add = [&](const std::string& text, const Outcome& expected) {
            if (expected.bytes != "undriven") {
                all.emplace_back(text, expected);
                source += " " + text + "\n";
                address += static_cast<int>(expected.bytes.size() / 2);
            }
        };
        const auto cross = [&](const Operands& operands) {
            std::string text = keyword;
            for (const Shape* const operand : operands) {
                text += (text == keyword ? " " : ",") + operand->text;
            }
            add(text, Decide(operands));
        };
        const auto takesTwo = [](const Row* row) { return row->operands.size() == 2; };
        const std::size_t step = std::ranges::any_of(rowsOfKeyword, takesTwo) ? 1 : 5;
        const std::size_t n = shapes.size();
        cross({});
        for (std::size_t i = 0; i < n; ++i) {
            cross({&shapes[i]});
            cross({&shapes[i], &shapes[7 * i % n], &shapes[5 * i % n]});
            for (std::size_t j = i % step; j < n; j += step) {
                cross({&shapes[i], &shapes[j]});
            }
        }
        for (const auto& [instruction, bytes, place] : encodings) {
            if ((instruction + " ").starts_with(keyword + " ")) {
                add(instruction, {bytes, {}, place});
            }
        }
        std::string sample;  // assembled first: all statements of a directive that fills memory would take minutes
        for (std::size_t i = 0; i < all.size(); i += 41) {
            sample += " " + all[i].first + "\n";
        }
        const bool isSmall = !Assemble(sample, all.size()).empty();
        const std::vector<Outcome> outcomes = isSmall ? Assemble(source, all.size()) : std::vector<Outcome>();
        for (std::size_t i = 0; i < all.size() && !outcomes.empty(); ++i) {
            const auto& [text, expected] = all[i];
            const Outcome& got = outcomes.at(i);
            if (expected.bytes != got.bytes || expected.messages != got.messages) {
                using testing::PrintToString;
                Differ(text + " gives " + Brief(got.bytes) + PrintToString(got.messages) + ", not " + expected.bytes +
                       PrintToString(expected.messages) + "; " + expected.line);
            }
            CompareForms(text, got);
        }
    }
};

TEST(CrossingTest, AcceptsWhatEncodingsName) {
    const TempDir directory;
    Crossing crossing;
    for (const korv::Keyword& keyword : korv::keywords) {
        crossing.Cross(std::string(keyword.word));
    }
    for (const Row& row : crossing.rows) {
        if (!row.isUsed && row.line.starts_with("refusals.txt:")) {
            crossing.Differ(row.line + ": this line never decides");
        }
    }
    EXPECT_EQ(0U, crossing.differences);
    EXPECT_EQ(123U, crossing.shapes.size()) << "operands at the top of refusals.txt: none may be lost";
}

}  // namespace
}  // namespace korv_test
