// The features of korv-ls: tables of sources with marks, and the reply to requests there.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <sstream>

#include "frontend/analyser.h"
#include "frontend/file_store.h"
#include "run.h"
#include "server/features/actions.h"
#include "server/features/completion.h"
#include "server/features/formatting.h"
#include "server/features/hover.h"
#include "server/features/navigation.h"
#include "server/features/outline.h"
#include "server/features/tokens.h"
#include "table.h"

namespace korv_test {
namespace {

namespace lsp = korv::lsp;

constexpr korv::Range wholeFile{{0, 0}, {0xFFFFFFFF, 0}};

// The files of a case, with what the analysis makes of them.
struct Program {
    std::map<std::string, std::string> files;  // by name
    std::vector<std::string> names;            // of the files; the main one first
    struct Mark {
        std::string file;
        std::int32_t line;
        std::uint32_t column;
    };
    std::vector<Mark> marks;
    korv::Snapshot snapshot;
    std::int32_t markedFile = 0;
    korv::Place place;  // of the mark in question

    void Analyse(korv::PositionEncoding encoding) {
        korv::FileStore store;
        for (const auto& [name, text] : files) {
            if (!name.starts_with('/')) {
                WriteFile(name, "");  // that a file exists is asked of the disk
            }
            store.SetText(store.FullPath(name), text);
        }
        korv::Options options;
        options.source = names.at(0);
        options.maxErrors = 0;
        const korv::Wanted wanted{.statements = true, .names = true, .uses = true};
        snapshot = korv::Snapshot(std::make_shared<korv::Analysis>(korv::Analyse(options, &store, wanted)), encoding);
    }
    void GoTo(std::size_t number) {
        const Mark mark = marks.empty() ? Mark{names[0], 1, 0} : marks.at(number - 1);
        markedFile = snapshot.FileOf(korv::FileStore().FullPath(mark.file));
        place = {markedFile, mark.line, mark.column, 0};
    }
    [[nodiscard]] std::string LineBefore() const {
        return std::string(snapshot.Line(place.file, place.line).substr(0, place.column));
    }
    [[nodiscard]] korv::Range LineOfMark() const {
        const auto line = static_cast<std::uint32_t>(place.line - 1);
        return marks.empty() ? wholeFile : korv::Range{{line, 0}, {line, 0}};
    }
};

// As editors show it: from 1. "2:3-5" is within a line.
std::string Shown(const korv::Range& range) {
    const auto shown = [](const korv::Position& at) {
        return std::to_string(at.line + 1) + ":" + std::to_string(at.character + 1);
    };
    return shown(range.start) + (range.start == range.end             ? ""
                                 : range.start.line == range.end.line ? "-" + std::to_string(range.end.character + 1)
                                                                      : "-" + shown(range.end));
}
std::string Shown(const lsp::Location& at) {
    return at.path.substr(at.path.rfind('/') + 1) + " " + Shown(at.range);
}
std::string Lines(const Strings& lines) {
    std::string all;
    for (const std::string& line : lines) {
        all += line + "\n";
    }
    return all.empty() ? "none\n" : all;
}
template <typename Items, typename Text>
std::string Lines(const Items& items, const Text& text) {
    Strings lines;
    for (const auto& item : items) {
        lines.push_back(text(item));
    }
    return Lines(lines);
}
std::string Shown(const lsp::WorkspaceEdit& edit) {
    std::string all;
    for (const auto& [path, changes] : edit) {
        for (const lsp::TextEdit& change : changes) {
            all += Shown(lsp::Location{path, change.range}) + " '" + change.newText + "'\n";
        }
    }
    return all;
}
template <typename Reply>
std::string ShownOrRefused(const std::variant<Reply, lsp::Refusal>& reply,
                           const std::function<std::string(const Reply&)>& shown) {
    const auto* const refusal = std::get_if<lsp::Refusal>(&reply);
    return refusal != nullptr ? "refused: " + refusal->message + "\n" : shown(std::get<Reply>(reply));
}

// The text of `file` with `edits`, which do not overlap.
std::string Changed(const korv::Snapshot& snapshot, std::int32_t file, std::vector<lsp::TextEdit> edits) {
    const korv::StoredText& before = *snapshot.File(file).text;
    const auto offset = [&](const korv::Position& at) {
        const korv::Place place = snapshot.PlaceOf(file, at);
        return before.LineStart(place.line) + place.column;
    };
    std::ranges::sort(edits, {}, [](const lsp::TextEdit& edit) { return edit.range.start; });
    std::string text;
    std::size_t end = 0;
    for (const lsp::TextEdit& edit : edits) {
        text.append(before.Bytes().substr(end, offset(edit.range.start) - end)) += edit.newText;
        end = offset(edit.range.end);
    }
    return text.append(before.Bytes().substr(end));
}

std::string Completions(const Program& program) {
    const auto filesIn = [](const std::string& name) { return Strings{name.empty() ? "LIB/" : name + "A.KOR"}; };
    return Lines(CompletionsFor(program.snapshot, program.LineBefore(), filesIn), [](const lsp::CompletionItem& item) {
        return item.label + (item.detail.empty() ? "" : "  " + item.detail);
    });
}
std::string Signatures(const Program& program) {
    const auto help = korv::SignaturesFor(program.LineBefore());
    std::string all;
    for (std::size_t i = 0; help && i < help->signatures.size(); ++i) {
        const lsp::Signature& signature = help->signatures[i];
        all += (i == help->activeSignature ? "* " : "  ") + signature.label + "  [" +
               signature.parameters.at(help->activeParameter) + "]\n";
    }
    return all.empty() ? "none\n" : all;
}
std::string Tokens(const Program& program) {
    const auto tokens = SemanticTokensIn(program.snapshot, program.markedFile, program.LineOfMark());
    return Lines(tokens, [&](const lsp::SemanticToken& token) {
        const korv::Range range{token.start, {token.start.line, token.start.character + token.length}};
        return Shown(range) + " " + std::string(lsp::tokenTypeNames[static_cast<std::size_t>(token.type)]) +
               ((token.modifiers & lsp::modifierDefinition) != 0 ? " definition" : "");
    });
}
std::string Formatted(const Program& program, const std::string& how) {
    const lsp::FormattingOptions options{.tabSize = 8, .insertSpaces = how != "tabs"};
    const auto edits = FormattingEdits(program.snapshot, program.markedFile, program.LineOfMark(), options);
    return ReplaceAll(Changed(program.snapshot, program.markedFile, edits), "\t", "{09}");
}
std::string Symbols(const Program& program) {
    return Lines(SymbolsIn(program.snapshot, program.markedFile), [](const lsp::DocumentSymbol& symbol) {
        return Shown(symbol.selectionRange) + " " + symbol.name + " " + symbol.detail + " " +
               (symbol.kind == lsp::SymbolKind::function ? "label" : "constant");
    });
}
std::string Hints(const Program& program, const std::string& form) {
    const std::map<std::string, korv::HintForm> forms = {{"none", korv::HintForm::none},
                                                         {"address", korv::HintForm::address},
                                                         {"bytes", korv::HintForm::addressAndBytes}};
    return Lines(InlayHintsIn(program.snapshot, program.markedFile, program.LineOfMark(), forms.at(form)),
                 [](const lsp::InlayHint& hint) {
                     return Shown(korv::Range{hint.position, hint.position}) + " " + hint.label;
                 });
}

// The reply to `request` with the rest of its line, as text.
std::string Reply(const Program& program, const std::string& request, const std::string& word) {
    const korv::Snapshot& snapshot = program.snapshot;
    const korv::Place& place = program.place;
    const auto location = [](const lsp::Location& at) { return Shown(at); };
    const std::map<std::string, std::function<std::string()>> replies = {
        {"hover",
         [&] {
             const auto hover = HoverAt(snapshot, place);
             return hover ? Shown(hover->range) + "\n" + hover->markdown + "\n" : "none\n";
         }},
        {"definition", [&] { return Lines(DefinitionAt(snapshot, place), location); }},
        {"references", [&] { return Lines(ReferencesAt(snapshot, place, word == "all"), location); }},
        {"highlights",
         [&] {
             return Lines(HighlightsAt(snapshot, place), [](const lsp::DocumentHighlight& each) {
                 return Shown(each.range) + (each.kind == lsp::HighlightKind::write ? " write" : "");
             });
         }},
        {"prepare",
         [&] {
             return ShownOrRefused<lsp::PreparedRename>(
                 PrepareRename(snapshot, place), [](const auto& it) { return Shown(it.range) + " " + it.name + "\n"; });
         }},
        {"rename",
         [&] {
             return ShownOrRefused<lsp::WorkspaceEdit>(Rename(snapshot, place, word),
                                                       [](const auto& it) { return Shown(it); });
         }},
        {"links",
         [&] {
             return Lines(LinksIn(snapshot, program.markedFile), [](const lsp::DocumentLink& link) {
                 return Shown(link.range) + " -> " + Shown(lsp::Location{link.path, {}});
             });
         }},
        {"complete", [&] { return Completions(program); }},
        {"signatures", [&] { return Signatures(program); }},
        {"tokens", [&] { return Tokens(program); }},
        {"symbols", [&] { return Symbols(program); }},
        {"workspace",
         [&] {
             return Lines(SymbolsLike(snapshot, word),
                          [](const lsp::WorkspaceSymbol& each) { return each.name + " " + Shown(each.location); });
         }},
        {"folding",
         [&] {
             return Lines(FoldingRangesIn(snapshot, program.markedFile), [](const lsp::FoldingRange& each) {
                 return std::to_string(each.startLine + 1) + "-" + std::to_string(each.endLine + 1) +
                        (each.isComment ? " comment" : "");
             });
         }},
        {"hints", [&] { return Hints(program, word); }},
        {"format", [&] { return Formatted(program, word); }},
        {"actions",
         [&] {
             return Lines(ActionsIn(snapshot, program.markedFile, program.LineOfMark()),
                          [](const lsp::CodeAction& each) { return each.title + "\n" + Shown(each.edit); });
         }},
    };
    return replies.at(request)();
}

// Bytes for "{HH}"; `columns` gets the offset of each character of `text`.
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
        std::size_t mark = 1;
        stream >> feature;
        if (std::isdigit(static_cast<unsigned char>(feature[0])) != 0) {
            mark = std::stoul(feature);
            stream >> feature;
        }
        stream >> word;
        program->GoTo(mark);
        ASSERT_NE(korv::noIndex, program->markedFile) << request.place;
        EXPECT_EQ(request.expected, Reply(*program, feature, word)) << request.place << " " << request.text;
    }
}

TEST(FeaturesTest, RepliesAreThoseOfTheTables) {
    const TempDir directory;
    for (const std::string& table : TablesIn("server")) {
        for (const Block& block : ReadBlocks(table)) {
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
                    requests.push_back({line.place, text.substr(2), ""});
                } else if (text.starts_with("=")) {
                    requests.at(requests.size() - 1).expected +=
                        text.substr(std::min<std::size_t>(2, text.size())) + "\n";
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

// All sources of the tables and the examples, with blanks and with tabs.
TEST(FeaturesTest, FormattingNeverChangesTheImage) {
    int changes = 0;
    const auto check = [&changes](Program program, const std::string& title) {
        const TempDir directory;
        program.Analyse(korv::PositionEncoding::utf8);
        for (const bool insertSpaces : {true, false}) {
            Program formatted = program;
            const auto& files = program.snapshot.analysis->files;
            for (std::size_t i = 0; i < files.size(); ++i) {
                const auto edits = FormattingEdits(program.snapshot, static_cast<std::int32_t>(i), wholeFile,
                                                   {.tabSize = 8, .insertSpaces = insertSpaces});
                changes += static_cast<int>(edits.size());
                formatted.files[files[i].text->Path()] = Changed(program.snapshot, static_cast<std::int32_t>(i), edits);
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
                    check({each.files, {"Main.Kor"}, {}, korv::Snapshot(), 0, {}}, block.at(0).place);
                }
            }
        }
    }
    for (const std::string name : {"dump", "guess", "hello", "loader", "sieve", "sort"}) {
        check({{}, {ProjectPath("examples/" + name + ".kor")}, {}, korv::Snapshot(), 0, {}}, name);
    }
    EXPECT_LT(1000, changes);
}

}  // namespace
}  // namespace korv_test
