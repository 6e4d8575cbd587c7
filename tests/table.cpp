#include "table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>

#include "diagnostics/message_numbers.h"
#include "run.h"

namespace korv_test {
namespace {

void Require(bool isTrue, const std::string& otherwise) {
    if (!isTrue) {
        throw std::runtime_error(otherwise);
    }
}

// Calls `work` for each line, and adds the place of the line to any exception it throws.
template <typename Work>
void ForEachLine(const std::vector<TableLine>& lines, const Work& work) {
    for (const TableLine& line : lines) {
        try {
            work(line);
        } catch (const std::exception& refusal) {
            throw std::runtime_error(line.place + ": " + refusal.what());
        }
    }
}

std::vector<TableLine> ReadLines(const std::string& path) {
    std::ifstream stream(path);
    std::vector<TableLine> lines;
    for (std::string text; std::getline(stream, text);) {
        lines.push_back({path + ":" + std::to_string(lines.size() + 1), text});
    }
    return lines;
}

bool IsBytes(const std::string& text) {
    return text.size() % 2 == 0 && text.find_first_not_of("0123456789ABCDEF") == std::string::npos;
}

// Expands a line with alternatives: "LD [B|C],5" yields two lines, each with its alternative. A line without brackets
// yields itself with the alternative "=", so that "[=]" in its messages does not change.
std::vector<std::pair<std::string, std::string>> Alternatives(const std::string& line) {
    static const std::regex bracket(R"(\[([^\[\]]*\|[^\[\]]*)\])");
    std::smatch match;
    if (line.find('|') == std::string::npos || !std::regex_search(line, match, bracket)) {
        return {{line, "="}};
    }
    Require(!std::regex_search(match[0].second, line.end(), bracket), "alternatives twice");
    std::vector<std::pair<std::string, std::string>> all;
    for (const std::string& text : Split(match[1], '|')) {
        all.emplace_back(match.prefix().str() + text + match.suffix().str(), text);
    }
    return all;
}

std::string Unescaped(const std::string& text) {
    constexpr std::string_view letters = "rntv0\\";
    constexpr std::string_view meanings("\r\n\t\v\0\\", letters.size());
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
            continue;
        }
        const std::string hex = text.substr(std::min(i + 2, text.size()), 2);
        const std::size_t letter = letters.find(text[++i]);
        if (text[i] == 'x' && hex.size() == 2 && IsBytes(hex)) {
            result += static_cast<char>(std::stoi(hex, nullptr, 16));
            i += 2;
        } else {
            Require(letter != std::string_view::npos, "unknown escape");
            result += meanings[letter];
        }
    }
    return result;
}

// Expands repetitions such as "\{L\#: DB \#\n*9}". Escapes are replaced only inside them, unless `isRaw`.
std::string Expanded(std::string text, bool isRaw) {
    static const std::regex endForm(R"(\*([0-9]{1,7})\})");
    for (std::size_t at = 0; (at = text.find("\\{", at)) != std::string::npos;) {
        std::smatch end;
        Require(std::regex_search(text.cbegin() + static_cast<std::ptrdiff_t>(at) + 2, text.cend(), end, endForm),
                "\\{ without its *count}");
        const std::string body = end.prefix();
        std::string all;
        for (int n = 0, count = std::stoi(end[1]); n < count; ++n) {
            const std::string first = ReplaceAll(body, "\\#", std::to_string(n));
            const std::string one = ReplaceAll(first, "\\+", std::to_string(n + 1));
            all += isRaw ? one : Unescaped(one);
        }
        text.replace(at, 2 + body.size() + end[0].str().size(), all);
        at += all.size();
    }
    return isRaw ? Unescaped(text) : text;
}

class CaseReader {
  public:
    // Reads the first line of a case: "case TITLE; korv WORDS".
    void Begin(const std::string& line) {
        const std::size_t command = line.find("; korv");
        Require(line.starts_with("case "), "outside a case, or a title of another case");
        if (command != std::string::npos) {
            test.arguments = Split(line.substr(command + 2), ' ');
            test.arguments.erase(test.arguments.begin());
            std::ranges::replace(test.arguments, "\"\"", "");
        }
    }

    // `place` is the place of `line` in its table.
    void Take(const std::string& line, const std::string& place) {
        takenPlace = place;
        if (file.empty()) {
            test.places[output].emplace_back(block->size(), place);
        }
        if (line.starts_with("    ")) {
            return TakeIndented(Expanded(line.substr(4), false));
        }
        const std::string word = line.substr(0, line.find(' '));
        std::string rest = Expanded(line.substr(std::min(word.size() + 1, line.size())), word == "raw");
        if (word == "raw") {
            *block += rest;
        } else if (word == "bytes") {
            AddBytes(rest);
        } else if (word == "error" || word == "warning") {
            AddMessage(" " + word + " " + rest, "");
        } else if (word == "file") {
            Require(!rest.empty(), "no name");
            Open(rest, &test.files);
            file = rest.substr(rest.rfind('/') + 1);
        } else {
            Require(word == "console" || word == "output", "unknown word");
            Require(rest.empty() == (word == "console"), "a name for \"output\" only");
            output = rest.empty() ? word : rest;
            Open(output, &test.outputs);
            file.clear();
        }
    }

    Case Finished() {
        for (const auto& [order, texts] : messages) {
            for (const auto& [place, text] : texts) {
                test.places["messages"].emplace_back(test.messages.size(), place);
                test.messages += text;
            }
        }
        const std::string told = test.outputs.contains("console") ? test.outputs["console"] : test.messages;
        test.hasError = told.find(") : error X") != std::string::npos;
        Require(messages.empty() || told == test.messages, "messages beside the console");
        Require(!test.hasError || test.bytes.value_or("none") == "none", "bytes beside an error");
        Require(test.bytes || !told.empty() || !test.outputs.empty(), "nothing is expected");
        static const std::regex name("[^-/].*|/.*/.*|");
        Strings names;
        std::copy_if(test.arguments.begin(), test.arguments.end(), std::back_inserter(names),
                     [](const std::string& word) { return std::regex_match(word, name); });
        const auto isBinary = std::count(test.arguments.begin(), test.arguments.end(), "/b");
        names.resize(std::max<std::size_t>(names.size(), 2));
        std::filesystem::path source = names[0].empty() ? "Main.Kor" : ReplaceAll(names[0], "\\", "/");
        test.target = names[1].empty() ? source.replace_extension(isBinary != 0 ? ".bin" : ".com").string() : names[1];
        Require(!test.bytes || !test.outputs.contains(test.target), "given twice");
        test.places.insert({test.target, test.places["bytes"]});
        return test;
    }

  private:
    void Open(const std::string& name, std::map<std::string, std::string>* texts) {
        Require(texts->try_emplace(name).second, "given twice");
        block = &(*texts)[name];
    }

    void AddBytes(std::string pairs) {
        for (const std::string& pair : Split(pairs, ' ')) {
            Require(pair.size() == 2 || pair.empty() || pairs == "none", "no bytes");
        }
        std::erase(pairs, ' ');
        test.places["bytes"].emplace_back(test.bytes.value_or("").size() / 2, takenPlace);
        test.bytes = test.bytes.value_or("") + pairs;
        Require(test.bytes == "none" || IsBytes(*test.bytes), "no bytes");
    }

    // A line of a file, or the lines that a repetition expands to.
    void TakeIndented(std::string lines) {
        lines += lines.ends_with('\n') ? "" : "\n";
        if (file.empty() || lines.find_first_of("|!=") == std::string::npos) {
            *block += lines;
            return;
        }
        lines.pop_back();
        for (const std::string& line : Split(lines, '\n')) {
            const std::string marked = ReplaceAll(ReplaceAll(line, ";= ", "\n="), ";!", "\n");
            auto parts = Split(marked, '\n');  // the source, then its marks
            const bool isMarked = parts.size() > 1;
            std::string source = parts[0];
            source.erase(isMarked ? source.find_last_not_of(' ') + 1 : source.size());
            if (parts.back().starts_with("=")) {
                AddBytes(parts.back().substr(1));
                parts.pop_back();
            }
            for (const auto& [text, part] : Alternatives(source)) {
                // A line that consists only of marks belongs to the line before.
                *block += isMarked && source.empty() ? "" : text + "\n";
                const auto number = std::count(block->begin(), block->end(), '\n');
                for (std::size_t i = 1; i < parts.size(); ++i) {
                    AddMessage(ReplaceAll(parts[i], "[=]", "[" + part + "]"),
                               file + "(" + std::to_string(number) + ")");
                }
            }
        }
    }

    // Examples of `text`: "1 error 16 [NZ]" for a mark at `place`; " error 16 B.KOR:7 [NZ]" if `place` is empty.
    void AddMessage(const std::string& text, std::string place) {
        static const std::regex form(
            R"(([0-9]?) (error|warning) (-?[0-9]{1,3})( (?:([\w.-]+):)?([0-9]+))?( \[.*\])? *)");
        std::smatch match;
        Require(std::regex_match(text, match, form), "no message: " + text.substr(text.find(' ') + 1));
        Require(place.empty() == match[4].matched, "no place, or two");
        if (place.empty()) {
            const std::string name = match[5].matched ? match.str(5) : "Main.Kor";
            place = (name == "-" ? "Uhm, I DUNNO! ;p" : name) + "(" + match.str(6) + ")";
        }
        const auto number = static_cast<std::size_t>(std::stoi(match[3]) + 1);
        Require(number <= korv::MESSAGE_TABLE.size(), "no such message");
        const std::string kind = match[2];
        const std::string meaning =
            number == 0 ? "Illegal " + kind + " number! (Internal error.)" : korv::MESSAGE_TABLE.at(number - 1).text;
        messages[kind + match.str(1)].emplace_back(
            takenPlace, place + " : " + kind + " X" + match.str(3) + " : " + meaning + match.str(7) + "\n");
    }

    Case test;
    std::string file = "Main.Kor";  // the name of the file being read, without its directory; empty for an output
    std::string* block = &test.files[file];
    std::string output;      // the output being read, if `file` is empty
    std::string takenPlace;  // the place of the current line
    // The place in the table and the printed text of each message, by "error", "error1" and so on.
    std::map<std::string, std::vector<std::pair<std::string, std::string>>> messages;
};

// Converts the manual's blocks "```korv SWITCHES" (with a source), "```bytes" and "```messages" to lines of a table.
std::vector<TableLine> ManualAsTable(const std::vector<TableLine>& manual) {
    const std::map<std::string, std::string> starts = {
        {"```korv", "    "}, {"```bytes", "bytes "}, {"```messages", ""}};
    std::vector<TableLine> table;
    std::string fence;
    for (const auto& [place, text] : manual) {
        if (!text.starts_with("```")) {
            if (starts.contains(fence)) {
                table.push_back({place, starts.at(fence) + text});
            }
            continue;
        }
        fence = text.substr(0, text.find(' '));
        if (fence == "```korv") {
            table.push_back({place, "case line " + place + "; korv Main.Kor" + text.substr(fence.size())});
        }
    }
    return table;
}

}  // namespace

Strings Split(const std::string& text, char at) {
    std::istringstream stream(text + at);
    Strings parts;
    for (std::string part; std::getline(stream, part, at);) {
        parts.push_back(part);
    }
    return parts;
}

std::string ProjectPath(const std::string& part) {
    return KORV_SOURCE_DIR "/" + part;
}

Strings TablesIn(const std::string& folder) {
    std::set<std::string> tables;
    for (const auto& entry : std::filesystem::directory_iterator(ProjectPath("tests/" + folder))) {
        tables.insert(entry.path().generic_string());
    }
    return {tables.begin(), tables.end()};
}

std::vector<Block> ReadBlocks(const std::string& path) {
    std::vector<Block> blocks;
    std::set<std::string> titles;
    bool isOpen = false;
    const std::vector<TableLine> lines = ReadLines(path);
    for (TableLine line : path.ends_with(".md") ? ManualAsTable(lines) : lines) {
        const bool isEmpty = line.text.empty();
        if (line.text.starts_with("case ")) {
            isOpen = false;
            line.text.insert(0, titles.insert(line.text).second ? "" : "again ");
        }
        if (!isEmpty) {
            (isOpen ? blocks.back() : blocks.emplace_back()).push_back(line);
        }
        isOpen = !isEmpty;
    }
    return blocks;
}

std::string TestName(const Block& block) {
    const TableLine& line = block.front();
    const std::string name = line.place.substr(line.place.rfind('/') + 1) + " " + line.text;
    return std::regex_replace(name, std::regex("[^A-Za-z0-9]"), "_");
}

Case ReadCase(const Block& block) {
    CaseReader reader;
    Case test;
    ForEachLine(block, [&](const TableLine& line) {
        if (&line == &block.front()) {
            reader.Begin(line.text);
        } else {
            reader.Take(line.text, line.place);
        }
        if (&line == &block.back()) {
            test = reader.Finished();
        }
    });
    test.title = block.front().place + ": " + block.front().text;
    return test;
}

namespace {

std::string Difference(const Case& test, const std::string& name, const std::string& expected, const std::string& got) {
    const auto at = static_cast<std::size_t>(std::ranges::mismatch(expected, got).in1 - expected.begin());
    if (at == expected.size() && at == got.size()) {
        return "";
    }
    std::string place = test.title;
    if (const auto lines = test.places.find(name); lines != test.places.end()) {
        for (const auto& [offset, line] : lines->second) {
            place = offset <= at ? line : place;
        }
    }
    const auto shown = [at](const std::string& text) {
        const std::size_t start = at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
        const std::string line = text.substr(std::max(start, at - std::min<std::size_t>(at, 200)), 400);
        return (at < text.size() ? ToHex(text.substr(at, 1)) : "end") + " in " +
               testing::PrintToString(line.substr(0, line.find('\n') + 1));
    };
    return "\n" + place + ": " + name + " differs at offset " + std::to_string(at) + "\n  expected " + shown(expected) +
           "\n       got " + shown(got) + "\n" + (got.size() < 10000 ? "whole:\n" + got : "");
}

}  // namespace

std::string Differences(const Case& test, std::map<std::string, std::string> expected,
                        std::map<std::string, std::string> got) {
    std::string all;
    for (const auto& file : expected) {
        got.try_emplace(file.first, "no file");
    }
    for (const auto& [name, text] : got) {
        all += Difference(test, name, expected.try_emplace(name, "no file").first->second, text);
    }
    return all.empty() ? "" : test.title + all;
}

std::vector<Encoding> ReadEncodings(const std::string& path) {
    std::vector<Encoding> encodings;
    ForEachLine(ReadLines(path), [&](const TableLine& line) {
        if (line.text.empty() || line.text[0] == '#') {
            return;
        }
        const std::size_t equals = line.text.rfind(" = ");
        Require(equals != std::string::npos, "no \" = \"");
        const auto instructions = Alternatives(line.text.substr(0, equals));
        const auto groups = Split(ReplaceAll(line.text.substr(equals + 3), " ", ""), '|');
        Require(instructions.size() == groups.size(), "unequal groups");
        for (std::size_t i = 0; i < groups.size(); ++i) {
            Require(!groups[i].empty() && IsBytes(groups[i]), "no bytes");
            encodings.push_back({instructions[i].first, groups[i], line.place});
        }
    });
    return encodings;
}

}  // namespace korv_test
