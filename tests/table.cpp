#include "table.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "diagnostics/message_numbers.h"
#include "run.h"

namespace korv_test {
namespace {
namespace fs = std::filesystem;
using namespace std::string_literals;

void Require(bool isTrue, const std::string& otherwise) {
    if (!isTrue) {
        throw std::runtime_error(otherwise);
    }
}

// Does `work` on a line; what is thrown there gets the line's place.
template <typename Work>
void ReadLine(const TableLine& line, const Work& work) {
    try {
        work(line.text);
    } catch (const std::exception& refusal) {
        throw std::runtime_error(line.Place() + ": " + refusal.what());
    }
}

bool IsHex(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789ABCDEF") == std::string::npos;
}

std::vector<std::string> Split(const std::string& text, char at) {
    std::istringstream stream(text);
    std::vector<std::string> parts;
    for (std::string part; std::getline(stream, part, at);) {
        parts.push_back(part);
    }
    return parts;
}

// "LD [B|C],5" is two lines, each with its alternative. A line without brackets is itself, and has
// "=", so that "[=]" in its messages stays as it is.
std::vector<std::pair<std::string, std::string>> Alternatives(const std::string& line) {
    static const std::regex bracket(R"(\[([^\[\]]*\|[^\[\]]*)\])");
    std::smatch match;
    if (line.find('|') == std::string::npos || !std::regex_search(line, match, bracket)) {
        return {{line, "="}};
    }
    Require(!std::regex_search(match[0].second, line.end(), bracket), "alternatives twice");
    std::vector<std::pair<std::string, std::string>> all;
    for (const std::string& text : Split(match.str(1) + "|", '|')) {
        all.emplace_back(match.prefix().str() + text + match.suffix().str(), text);
    }
    return all;
}

// The text with its repetitions written out: "\{ IF 1\n*33}". Inside them every escape is known,
// and "\#" and "\+" are the number of the repetition, from 0 and from 1.
std::string Expanded(std::string_view text, bool knowsEscapes, int repetition = -1) {
    static const std::regex repetitionEnd(R"(\*([0-9]{1,7})\})");
    constexpr std::string_view letters = "rntv0\\";
    constexpr std::string_view meanings("\r\n\t\v\0\\", letters.size());
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view next = text.substr(i + 1, 1);
        if (text[i] != '\\' || (!knowsEscapes && next != "{")) {
            result += text[i];
            continue;
        }
        ++i;
        if (next == "{") {
            std::cmatch end;
            Require(std::regex_search(text.begin() + i + 1, text.end(), end, repetitionEnd),
                    "\\{ without its *count}");
            const std::string_view body(text.begin() + i + 1, end[0].first);
            for (int n = 0, count = std::stoi(end[1]); n < count; ++n) {
                result += Expanded(body, true, n);
            }
            i += body.size() + static_cast<std::size_t>(end.length());
        } else if ((next == "#" || next == "+") && repetition >= 0) {
            result += std::to_string(repetition + (next == "+" ? 1 : 0));
        } else if (next == "x" && IsHex(std::string(text.substr(i + 1, 2)))) {
            result += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
            i += 2;
        } else {
            Require(!next.empty() && letters.find(next) != std::string_view::npos,
                    "unknown escape");
            result += meanings[letters.find(next)];
        }
    }
    return result;
}

class CaseReader {
  public:
    void Take(const std::string& line) {
        if (line.starts_with("    ")) {
            return TakeIndented(Expanded(line.substr(4), false));
        }
        const std::string word = line.substr(0, line.find(' '));
        const std::string rest =
            Expanded(line.substr(std::min(word.size() + 1, line.size())), word == "raw");
        const std::map<std::string, std::string> outputs = {
            {"console", ""}, {"labels", "Labels.Out"}, {"debug", "Debug.Out"}, {"output", rest}};
        if (word == "raw") {
            Require(rest.find('\n') >= rest.size() - 1, "more than a line");
            *block += rest;
        } else if (word == "args") {
            Require(!std::exchange(hasArguments, true), "given twice");
            std::istringstream words(rest);
            test.arguments.assign(std::istream_iterator<std::string>(words), {});
            std::replace(test.arguments.begin(), test.arguments.end(), "\"\""s, ""s);
        } else if (word == "bytes") {
            TakeBytes(rest);
        } else if (word == "error" || word == "warning") {
            AddMessages(" " + word + " " + rest, "");
        } else if (word == "file") {
            Require(!rest.empty(), "no name");
            Open(rest, &test.files);
            file = rest.substr(rest.rfind('/') + 1);
        } else {
            Require(outputs.contains(word), "unknown word");
            Require(rest.empty() != (word == "output"), "a name for \"output\" only");
            Open(outputs.at(word), &test.outputs);
            file.clear();
        }
    }

    Case Finished() {
        for (const auto& [order, text] : messages) {
            test.messages += text;
        }
        const std::string told = test.outputs.contains("") ? test.outputs[""] : test.messages;
        test.hasError = told.find(") : error X") != std::string::npos;
        Require(messages.empty() || told == test.messages, "messages beside the console");
        Require(!test.hasError || test.bytes.value_or("none") == "none", "bytes beside an error");
        Require(test.bytes || !told.empty() || !test.outputs.empty(), "nothing is expected");
        return test;
    }

  private:
    void Open(const std::string& name, std::map<std::string, std::string>* texts) {
        const bool isNew = texts->try_emplace(name).second;
        Require(isNew || (name == "Main.Kor" && test.files[name].empty()), "given twice");
        block = &(*texts)[name];
    }

    // A line of a file, or those that a repetition makes of it.
    void TakeIndented(std::string lines) {
        lines += lines.ends_with('\n') ? "" : "\n";
        if (file.empty() || lines.find_first_of("|!") == std::string::npos) {
            *block += lines;
            return;
        }
        for (const std::string& line : Split(lines, '\n')) {
            const std::string marks = line.substr(std::min(line.find(";!"), line.size()));
            std::string source = line.substr(0, line.size() - marks.size());
            source.erase(marks.empty() ? source.size() : source.find_last_not_of(' ') + 1);
            if (source.empty() && !marks.empty()) {
                TakeMarks(marks);  // of the line before
                continue;
            }
            for (const auto& [text, part] : Alternatives(source)) {
                *block += text + "\n";
                TakeMarks(ReplaceAll(ReplaceAll(marks, "[=]", "[" + part + "]"), "{=}", part));
            }
        }
    }

    void TakeMarks(const std::string& marks) {
        const std::vector<std::string> parts = Split(ReplaceAll(marks, ";!", "\n"), '\n');
        for (std::size_t i = 1; i < parts.size(); ++i) {
            const auto line = std::count(block->begin(), block->end(), '\n');
            AddMessages(parts[i], file + ":" + std::to_string(line));
        }
    }

    // "1 error 16 [NZ]" from a mark, with its `place`, or " error 16 B.KOR:7,8 [A] [B]" without.
    // The console shows a line for each place and text; errors are first, then lower digits.
    void AddMessages(const std::string& text, const std::string& place) {
        static const std::regex form(
            R"(([0-9]?) (error|warning) (-?[0-9]+)(?: (\S*[0-9]))?((?: \[.*\])?) *)");
        static const std::regex placeForm(R"((?:(.+):)?([0-9]+(?:,[0-9]+)*))");
        std::smatch match;
        std::smatch where;
        Require(std::regex_match(text, match, form),
                "no message: " + text.substr(text.find(' ') + 1));
        const std::string given = place.empty() ? match.str(4) : place;
        Require(place.empty() == match[4].matched && std::regex_match(given, where, placeForm),
                "no place, or two");
        const auto number = static_cast<std::size_t>(std::stoi(match[3]) + 1);
        Require(number <= korv::MESSAGE_TABLE.size(), "no such message");
        const std::string kind = match[2];
        const std::string name = where[1] == "-"    ? "Uhm, I DUNNO! ;p"
                                 : where[1].matched ? where.str(1)
                                                    : "Main.Kor";
        for (const std::string& line : Split(where[2], ',')) {
            const std::string head =
                name + "(" + line + ") : " + kind + " X" + match.str(3) + " : " +
                (number == 0 ? "Illegal " + kind + " number! (Internal error.)"
                             : std::string(korv::MESSAGE_TABLE.at(number - 1).text));
            messages[kind + match.str(1)] +=
                head + ReplaceAll(match[5], "] [", "]\n" + head + " [") + "\n";
        }
    }

    void TakeBytes(const std::string& text) {
        std::istringstream words(text);
        std::string& bytes = test.bytes ? *test.bytes : test.bytes.emplace();
        for (std::string word; words >> word;) {
            const bool isNone = word == "none" && bytes.empty();
            Require(isNone || (word.size() == 2 && IsHex(word) && bytes != "none"), "no bytes");
            bytes += (bytes.empty() ? "" : " ") + word;
        }
    }

    Case test;
    std::string file = "Main.Kor";  // that is open, without its directory; empty: an output
    std::string* block = &test.files[file];
    std::map<std::string, std::string> messages;  // as printed; by "error", "error1", ...
    bool hasArguments = false;
};

}  // namespace

std::string ProjectPath(const std::string& part) {
    return KORV_SOURCE_DIR "/" + part;
}

std::vector<std::string> TablesIn(const std::string& folder) {
    std::vector<std::string> tables;
    for (const auto& entry : fs::directory_iterator(ProjectPath("tests/" + folder))) {
        tables.push_back(entry.path());
    }
    std::sort(tables.begin(), tables.end());
    return tables;
}

TableLines ReadLines(const std::string& table, std::istream&& stream) {
    TableLines lines;
    for (TableLine line{table, 1, ""}; std::getline(stream, line.text); ++line.number) {
        lines.push_back(line);
    }
    return lines;
}

TableLines ReadLines(const std::string& path) {
    return ReadLines(path, std::ifstream(path));
}

// "```korv SWITCHES" with a source, then "```bytes" or "```messages".
TableLines ManualAsTable(const TableLines& manual) {
    TableLines table;
    std::string fence;
    for (TableLine line : manual) {
        if (line.text.starts_with("```")) {
            fence = fence.empty() ? line.text.substr(3) + " " : "";
            if (fence.starts_with("korv ")) {
                table.push_back(
                    {line.table, line.number, "case line " + std::to_string(line.number)});
                line.text = "args Main.Kor" + fence.substr(4);
                table.push_back(line);
            }
        } else if (fence.starts_with("korv ") || fence == "bytes " || fence == "messages ") {
            line.text.insert(0, fence == "bytes " ? fence : fence == "messages " ? "" : "    ");
            table.push_back(line);
        }
    }
    return table;
}

std::vector<Block> SplitIntoBlocks(const TableLines& lines) {
    std::vector<Block> blocks;
    std::set<std::string> titles;
    bool mayGoOn = false;
    for (const TableLine& line : lines) {
        const bool isTitle = line.text.starts_with("case ");
        if (isTitle || (!mayGoOn && !line.text.empty() && line.text[0] != '#')) {
            blocks.emplace_back().title = line.text.substr(isTitle ? 5 : 0);
            blocks.back().fault = isTitle ? "" : "outside a case";
            blocks.back().fault +=
                titles.insert(blocks.back().title).second ? "" : "a title of another case";
        }
        mayGoOn = isTitle || (mayGoOn && !line.text.empty());
        if (!line.text.empty() && line.text[0] != '#') {
            blocks.back().lines.push_back(line);
        }
    }
    return blocks;
}

Case ReadCase(const Block& block) {
    CaseReader reader;
    Case test;
    for (const TableLine& line : block.lines) {
        ReadLine(line, [&](const std::string& text) {
            Require(block.fault.empty(), block.fault);
            if (&line != &block.lines.front()) {
                reader.Take(text);
            }
            if (&line == &block.lines.back()) {
                test = reader.Finished();
            }
        });
    }
    return test;
}

std::vector<Encoding> ReadEncodings(const TableLines& lines) {
    std::vector<Encoding> encodings;
    for (const TableLine& line : lines) {
        ReadLine(line, [&](const std::string& text) {
            if (text.empty() || text[0] == '#') {
                return;
            }
            const std::size_t equals = text.rfind(" = ");
            Require(equals != std::string::npos, "no \" = \"");
            const auto instructions = Alternatives(text.substr(0, equals));
            const std::vector<std::string> groups =
                Split(ReplaceAll(text.substr(equals + 3), " ", "") + "|", '|');
            Require(instructions.size() == groups.size(),
                    std::to_string(instructions.size()) + " instructions, " +
                        std::to_string(groups.size()) + " groups of bytes");
            for (std::size_t i = 0; i < groups.size(); ++i) {
                Require(IsHex(groups[i]) && groups[i].size() % 2 == 0, "no bytes");
                encodings.push_back({instructions[i].first, groups[i], line});
            }
        });
    }
    return encodings;
}

std::vector<Encoding> ReadEncodings(const std::string& path) {
    return ReadEncodings(ReadLines(path));
}

}  // namespace korv_test
