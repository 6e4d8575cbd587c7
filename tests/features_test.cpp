// The features of korv-ls: tables of sources with marks, and the replies to requests at the marks.

#include "server/features/features.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "codegen/keywords.h"
#include "frontend/analyser.h"
#include "frontend/file_store.h"
#include "run.h"
#include "table.h"

namespace korv_test {
namespace {

using korv::Json;

constexpr korv::Range wholeFile{{0, 0}, {0xFFFFFFFF, 0}};

// The files of a case, with their analysis.
struct Program {
    std::map<std::string, std::string> files;  // by name
    Strings names;                             // the names of the files, the main one first
    struct Mark {
        std::string file;
        std::int32_t line;
        std::uint32_t column;
    };
    std::vector<Mark> marks = {};
    korv::Snapshot snapshot = {};
    std::int32_t markedFile = 0;
    korv::Place place = {};  // the place of the mark in the current request

    void Analyse(korv::PositionEncoding encoding) {
        korv::FileStore store;
        for (const auto& [name, text] : files) {
            if (!name.starts_with('/')) {
                WriteFile(name, "");  // the analysis looks on the disk for a file
            }
            store.SetText(store.FullPath(name), text);
        }
        korv::Options options;
        options.source = names.at(0);
        options.maxErrors = 0;
        const korv::Wanted wanted{.statements = true, .names = true, .uses = true};
        snapshot = {std::make_shared<korv::Analysis>(korv::Analyse(options, &store, wanted)), {}, encoding, nullptr};
        for (const korv::SourceFile& file : snapshot.analysis->files) {
            snapshot.uris.push_back(file.name);
        }
    }
    void GoTo(std::size_t number) {
        const Mark mark = marks.empty() ? Mark{names[0], 1, 0} : marks.at(number - 1);
        markedFile = snapshot.FileOf(korv::FileStore().FullPath(mark.file));
        place = {markedFile, mark.line, mark.column, 0};
    }
    // The reply of `feature` for the mark and its line.
    [[nodiscard]] Json Ask(Json (*feature)(const korv::Query&), const Json& parameters = {}) const {
        korv::Workspace workspace;
        workspace.SetSettings(parameters);
        const auto line = static_cast<std::uint32_t>(place.line - 1);
        const korv::Range range = marks.empty() ? wholeFile : korv::Range{{line, 0}, {line, 0}};
        return feature({snapshot, markedFile, place, range, parameters, workspace});
    }
};

// A range, with lines and columns counted from 1, as in editors. "2:3-5" is within a line.
std::string Shown(const Json& range) {
    const auto shown = [](const Json& at, const char* part) { return std::to_string(at[part].get<int>() + 1); };
    const Json& start = range["start"];
    const Json& end = range["end"];
    const std::string line = shown(start, "line"), column = shown(end, "character");
    return line + ":" + shown(start, "character") +
           (start == end                   ? ""
            : start["line"] == end["line"] ? "-" + column
                                           : "-" + shown(end, "line") + ":" + column);
}
std::string At(const Json& location) {
    return std::string(location["uri"]) + " " + Shown(location["range"]);
}
// The texts of the items, one per line unless another separator is given.
template <typename Text>
std::string Lines(const Json& items, const Text& text, const std::string& separator = "\n") {
    std::string all;
    for (const Json& item : items) {
        all += (all.empty() ? "" : separator) + text(item);
    }
    return (all.empty() ? "none" : all) + "\n";
}
std::string ShownEdit(const Json& edit) {
    std::string all;
    for (const auto& [uri, changes] : edit["changes"].items()) {
        for (const Json& change : changes) {
            all += uri + " " + Shown(change["range"]) + " '" + std::string(change["newText"]) + "'\n";
        }
    }
    return all;
}

// The text of `file` after `edits`, which must be in order and must not overlap.
std::string Changed(const korv::Snapshot& snapshot, std::int32_t file, const Json& edits) {
    const korv::StoredText& before = snapshot.Text(file);
    const auto offset = [&](const Json& edit, const char* end) {
        const auto at = korv::FindPosition(edit["range"], end);
        const korv::Place place = snapshot.PlaceOf(file, at.value());
        return before.LineStart(place.line) + place.column;
    };
    std::string text;
    std::size_t end = 0;
    for (const Json& edit : edits) {
        text.append(before.Bytes().substr(end, offset(edit, "/start") - end)) += std::string(edit["newText"]);
        end = offset(edit, "/end");
    }
    return text.append(before.Bytes().substr(end));
}

// The signatures, with the current operand in brackets and "*" before the active signature.
std::string Signatures(const Program& program) {
    const Json help = program.Ask(korv::Signatures);
    std::size_t number = 0;
    const auto shown = [&](const Json& signature) {
        std::string label = signature["label"];
        const Json& part = signature["parameters"].at(help["activeParameter"].get<std::size_t>())["label"];
        label.insert(part[1].get<std::size_t>(), "]").insert(part[0].get<std::size_t>(), "[");
        return (number++ == help["activeSignature"] ? "*" : "") + label;
    };
    return Lines(help.is_null() ? Json() : help["signatures"], shown, " | ");
}
// The columns and types of the tokens, with one line for each line of the source.
std::string Tokens(const Program& program) {
    const Json data = program.Ask(korv::SemanticTokens)["data"];
    std::ostringstream all;
    int line = 1, column = 0;
    for (std::size_t i = 0; i < data.size(); i += 5) {
        const int lines = data[i];
        column = data[i + 1].get<int>() + (lines == 0 ? column : 0);
        line += lines;
        all << (i == 0 ? "" : lines != 0 ? "\n" : " ") << (i == 0 || lines != 0 ? std::to_string(line) + ": " : "");
        all << column + 1 << "-" << column + 1 + data[i + 2].get<int>() << " "
            << std::string(korv::SemanticTokensLegend()["tokenTypes"][data[i + 3].get<std::size_t>()])
            << (data[i + 4].get<int>() % 2 == 1 ? "!" : "");
    }
    return all.str() + "\n";
}

// The reply to `request` as text. `word` is the word after it, if there is one.
std::string Reply(const Program& program, const std::string& request, const std::string& word) {
    if (request == "hover") {
        const Json hover = program.Ask(korv::Hover);
        if (hover.is_null()) {
            return "none\n";
        }
        const std::string text = ReplaceAll(hover["contents"]["value"], "```korv\n", "`");
        return Shown(hover["range"]) + " " + ReplaceAll(text, "\n```", "`") + "\n";
    }
    if (request == "definition") {
        return Lines(program.Ask(korv::Definition), At);
    }
    if (request == "references") {
        return Lines(program.Ask(korv::References, {{"context", {{"includeDeclaration", word == "all"}}}}), At);
    }
    if (request == "highlights") {
        return Lines(program.Ask(korv::Highlights),
                     [](const Json& each) { return Shown(each["range"]) + (each["kind"] == 3 ? " write" : ""); });
    }
    if (request == "rename") {
        return ShownEdit(program.Ask(korv::Rename, {{"newName", word}}));
    }
    if (request == "complete") {
        std::string group;  // the kind and the sort order, shown if they differ from those of the item before
        const auto shown = [&group](const Json& item) {
            const std::string next = item["kind"].dump() + "/" + item.value("sortText", "-").substr(0, 1) + ":";
            const std::string label = (next == group ? "" : next) + std::string(item["label"]);
            group = next;
            return label + (item.contains("detail") ? "=" + std::string(item["detail"]) : "");
        };
        const Json items = program.Ask(korv::Completions);
        std::string others;  // the keywords that are not offered: a new one changes nothing here
        for (const korv::Keyword& each : korv::keywords) {
            const auto isIt = [&each](const Json& item) { return item["label"] == each.word; };
            others += std::ranges::none_of(items, isIt) ? " " + std::string(each.word) : "";
        }
        return items.size() > 50 ? "all but" + others + "\n" : Lines(items, shown, " ");
    }
    if (request == "signatures") {
        return Signatures(program);
    }
    if (request == "tokens") {
        return Tokens(program);
    }
    if (request == "folding") {
        return Lines(program.Ask(korv::FoldingRanges), [](const Json& each) {
            return std::to_string(each["startLine"].get<int>() + 1) + "-" +
                   std::to_string(each["endLine"].get<int>() + 1) + (each["kind"] == "comment" ? " comment" : "");
        });
    }
    if (request == "hints") {
        return Lines(program.Ask(korv::InlayHints, {{"inlayHints", word}}), [](const Json& hint) {
            return Shown({{"start", hint["position"]}, {"end", hint["position"]}}) + " " + std::string(hint["label"]);
        });
    }
    if (request == "format") {
        const Json edits = program.Ask(korv::Formatting, {{"options", {{"insertSpaces", word != "tabs"}}}});
        return ReplaceAll(Changed(program.snapshot, program.markedFile, edits), "\t", "{09}");
    }
    EXPECT_EQ("actions", request);
    std::string actions;
    for (const Json& each : program.Ask(korv::CodeActions)) {
        const std::string end = each.contains("isPreferred") ? "\n" : " (not preferred)\n";
        actions += std::string(each["title"]) + end + ShownEdit(each["edit"]);
    }
    return actions;
}

// Replaces each "{HH}" with its byte. For each character of `text`, appends its offset in the result to `columns`.
std::string Unescaped(const std::string& text, std::vector<std::size_t>* columns) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
            columns->push_back(bytes.size());
        }
        if (text[i] == '{' && text.substr(i).find('}') == 3) {
            bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            columns->insert(columns->end(), 3, bytes.size());
            i += 3;
        } else {
            bytes += text[i];
        }
    }
    columns->push_back(bytes.size());
    return bytes;
}

struct Request {
    std::string place;
    std::string text;
    std::string expected;
};

void Check(Program* program, const Strings& words, const std::vector<Request>& requests) {
    program->Analyse(std::ranges::count(words, "utf8") != 0 ? korv::PositionEncoding::utf8
                                                            : korv::PositionEncoding::utf16);
    for (const Request& request : requests) {
        std::istringstream stream(request.text);
        std::string feature, word;
        std::size_t mark = 1, last = 1;
        stream >> feature;
        if (std::isdigit(static_cast<unsigned char>(feature[0])) != 0) {
            mark = std::stoul(feature);
            last = std::stoul(feature.substr(feature.find('-') + 1));  // "2-4", or just "2"
            stream >> feature;
        }
        std::string reply;
        for (; mark <= last; ++mark) {
            program->GoTo(mark);
            ASSERT_NE(korv::noIndex, program->markedFile) << request.place;
            do {
                stream >> word;
                try {
                    reply += Reply(*program, feature, word);
                } catch (const korv::RequestError& error) {
                    reply += "refused: " + error.message + "\n";
                }
            } while (stream >> std::ws && !stream.eof());
        }
        EXPECT_EQ(request.expected, ReplaceAll(reply, "\n", " | ")) << request.place << " " << request.text;
    }
}

TEST(FeaturesTest, RepliesAreThoseOfTheTables) {
    for (const std::string& table : TablesIn("server")) {
        for (const Block& block : ReadBlocks(table)) {
            const TempDir directory;
            Program program;
            std::vector<Request> requests;
            std::vector<std::size_t> columns;
            program.names = {"a.kor"};
            for (const TableLine& line : block) {
                const std::string& text = line.text;
                const std::size_t first = text.find_first_not_of(' ');
                if (text.starts_with("file ")) {
                    program.names.push_back(text.substr(5));
                } else if (text.starts_with("? ")) {
                    const std::size_t end = std::min(text.find(" = "), text.size());
                    const std::string reply = end == text.size() ? "" : text.substr(end + 3) + " | ";
                    requests.push_back({line.place, text.substr(2, end - 2), reply});
                } else if (text.starts_with("=")) {
                    requests.at(requests.size() - 1).expected +=
                        text.substr(std::min<std::size_t>(2, text.size())) + " | ";
                } else if (text.starts_with("    ") && first != std::string::npos && text[first] == '^') {
                    const std::string& name = program.names.back();
                    const auto number = std::ranges::count(program.files[name], '\n');
                    for (std::size_t at = first; at != std::string::npos; at = text.find('^', at + 1)) {
                        program.marks.push_back(
                            {name, static_cast<std::int32_t>(number), static_cast<std::uint32_t>(columns.at(at - 4))});
                    }
                } else if (text.starts_with("    ")) {
                    columns.clear();
                    program.files[program.names.back()] += Unescaped(text.substr(4), &columns) + "\n";
                } else {
                    ASSERT_TRUE(text.starts_with("case ")) << line.place;
                }
            }
            ASSERT_FALSE(requests.empty()) << block.at(0).place;
            Check(&program, Split(block.at(0).text, ' '), requests);
        }
    }
}

// Formats all sources of the tables and the examples, with blanks and with tabs.
TEST(FeaturesTest, FormattingNeverChangesTheImage) {
    int changes = 0;
    const auto check = [&changes](Program program, const std::string& title) {
        const TempDir directory;
        program.Analyse(korv::PositionEncoding::utf8);
        for (const bool insertSpaces : {true, false}) {
            Program formatted = program;
            const auto& files = program.snapshot.analysis->files;
            for (std::size_t i = 0; i < files.size(); ++i) {
                program.markedFile = static_cast<std::int32_t>(i);
                const Json options = {{"insertSpaces", insertSpaces}, {"tabSize", 0}};
                const Json edits = program.Ask(korv::Formatting, {{"options", options}});
                changes += static_cast<int>(edits.size());
                formatted.files[files[i].text->Path()] = Changed(program.snapshot, program.markedFile, edits);
            }
            formatted.Analyse(korv::PositionEncoding::utf8);
            EXPECT_EQ(program.snapshot.analysis->image, formatted.snapshot.analysis->image) << title;
            EXPECT_EQ(program.snapshot.analysis->messages.size(), formatted.snapshot.analysis->messages.size())
                << title;
        }
    };
    for (const std::string folder : {"cases", "frontend"}) {
        for (const std::string& table : TablesIn(folder)) {
            for (const Block& block : table.ends_with("mistakes.txt") ? std::vector<Block>() : ReadBlocks(table)) {
                const Case each = ReadCase(block);
                const auto main = each.files.find("Main.Kor");
                if (main != each.files.end() && main->second.size() < 20000) {
                    check({each.files, {"Main.Kor"}}, block.at(0).place);
                }
            }
        }
    }
    for (const std::string name : {"dump", "guess", "hello", "loader", "sieve", "sort"}) {
        check({{}, {ProjectPath("examples/" + name + ".kor")}}, name);
    }
    EXPECT_LT(1000, changes);
}

}  // namespace
}  // namespace korv_test
