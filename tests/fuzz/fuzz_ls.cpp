// Runs sessions of korv-ls on arbitrary bytes. The input has the same format as in fuzz_run.cpp. Its switches become
// the setting `arguments`. Its last file controls a client, which edits the other three, sends requests about any
// place, and opens and closes documents. After each batch, every request must have its reply, and the published
// messages must equal those of a fresh analysis of the same texts.

#include <algorithm>
#include <sstream>

#include "frontend/analyser.h"
#include "frontend/file_store.h"
#include "frontend/symbol_formats.h"
#include "fuzz.h"
#include "server/features/features.h"
#include "server/server.h"
#include "source/source_file.h"

// A file that includes itself twice is read a thousand times, which is legal but slow. So the linker replaces the real
// functions with `OfText` and `Analyse` below: an analysis reads at most ten texts.
namespace wrapped {
korv::CSourceFile RealOfText(std::string_view) asm(
    "__real__ZN4korv11CSourceFile6OfTextESt17basic_string_viewIcSt11char_traitsIcEE");
korv::CSourceFile OfText(std::string_view) asm(
    "__wrap__ZN4korv11CSourceFile6OfTextESt17basic_string_viewIcSt11char_traitsIcEE");
korv::Analysis RealAnalyse(const korv::Options&, korv::FileStore*, const korv::Wanted&) asm(
    "__real__ZN4korv7AnalyseERKNS_7OptionsEPNS_9FileStoreERKNS_6WantedE");
korv::Analysis Analyse(const korv::Options&, korv::FileStore*,
                       const korv::Wanted&) asm("__wrap__ZN4korv7AnalyseERKNS_7OptionsEPNS_9FileStoreERKNS_6WantedE");

int openings = 0;
korv::CSourceFile OfText(std::string_view text) {
    return RealOfText(++openings > 10 ? "" : text);
}
korv::Analysis Analyse(const korv::Options& options, korv::FileStore* store, const korv::Wanted& wanted) {
    openings = 0;
    return RealAnalyse(options, store, wanted);
}
}  // namespace wrapped

namespace {
using korv::Json;
using Texts = std::map<std::string, std::string>;  // by path

const std::string folder = "/no-such-directory";
const std::string mainPath = folder + "/MAIN.KOR";

// Converts arbitrary bytes to UTF-8, since JSON allows nothing else. Bytes from F8H up become a character of two units
// in UTF-16.
std::string Utf8(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
        } else if (byte < 0xF8) {
            text += static_cast<char>(0xC0 | byte >> 6);
            text += static_cast<char>(0x80 | (byte & 0x3F));
        } else {
            text += "\xF0\x9F\x98\x80";
        }
    }
    return text;
}

std::string UriOf(const std::string& path) {
    return "file://" + path;
}

class Client : public korv::platform::Connection {
  public:
    Client(const std::string& switches, Texts sources, std::string script)
        : sources(std::move(sources)), script(std::move(script)) {
        std::vector<std::string> words = WordsIn(switches, 12, {});
        words.emplace_back("MAIN.KOR");
        const bool hasFile = std::ranges::any_of(words, [](const std::string& word) { return word[0] == '@'; });
        if (hasFile || !TakeWords(words, &options).empty() || options.request != korv::Request::assemble ||
            options.maxImage > 100000 || options.lineLength > 100000 || options.source != "MAIN.KOR") {
            words = {"MAIN.KOR"};
            options = {};
            (void)TakeWords(words, &options);
        }
        words.pop_back();
        options.maxErrors = 1000;
        isUtf8 = Next() % 2 == 0;
        Request("initialize", {{"rootUri", UriOf(folder)},
                               {"capabilities", {{"general", {{"positionEncodings", {isUtf8 ? "utf-8" : "utf-16"}}}}}},
                               {"initializationOptions",
                                {{"main", "MAIN.KOR"}, {"arguments", words}, {"inlayHints", "addressAndBytes"}}}});
        Open(mainPath);
    }

    bool IsInputWaiting() const override { return !input.empty(); }
    // When `input` is empty, the server has handled all messages.
    std::size_t Read(char* buffer, std::size_t count) override {
        if (input.empty()) {
            Require(waiting.empty(), "a request without reply");
            CheckDiagnostics();
            SendBatch();
        }
        const std::size_t part = input.copy(buffer, count);
        input.erase(0, part);
        return part;
    }
    bool Write(std::string_view bytes) override {
        const std::string_view body = bytes.substr(bytes.find("\r\n\r\n") + 4);
        const Json message = Json::parse(body);
        if (message.contains("id") && !message["id"].is_null()) {
            const auto asked = waiting.find(message["id"]);
            Require(asked != waiting.end(), "a second reply");
            const int code = message.contains("error") ? message["error"]["code"].get<int>() : 0;
            Require(code == 0 || code == -32803 || code == -32800, "a request that fails: " + std::string(body));
            if (asked->second.ends_with("ormatting") && message["result"].is_array()) {
                CheckFormatting(message["result"]);
            }
            waiting.erase(asked);
        } else if (message.contains("method")) {
            Require(message["method"] == "textDocument/publishDiagnostics", "another message");
            published[message["params"]["uri"]] = message["params"];
        }
        return true;
    }

  private:
    int Next() { return at < script.size() ? static_cast<unsigned char>(script[at++]) : 0; }
    std::string NextText() {
        const std::size_t size = std::min<std::size_t>(static_cast<std::size_t>(Next()) % 32, script.size() - at);
        at += size;
        return Utf8(std::string_view(script).substr(at - size, size));
    }
    // The path of one of the documents, open or not.
    std::string NextPath() { return std::next(sources.begin(), Next() % static_cast<int>(sources.size()))->first; }
    // An offset at the start of a character of `text`, but not between CR and LF, where the protocol has no position.
    std::size_t NextOffset(const std::string& text) {
        std::size_t offset = static_cast<std::size_t>(Next() * 256 + Next()) % (text.size() + 1);
        while (offset < text.size() && (static_cast<unsigned char>(text[offset]) & 0xC0) == 0x80) {
            ++offset;
        }
        return offset - (offset != 0 && text[offset - 1] == '\r' ? 1 : 0);
    }

    // The position at `offset`, in the units that the client counts.
    Json PositionOf(const std::string& text, std::size_t offset) const {
        const std::size_t start = offset == 0 ? 0 : text.rfind('\n', offset - 1) + 1;
        return {{"line", std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(start), '\n')},
                {"character", korv::UnitsOf(std::string_view(text).substr(start), offset - start, Encoding())}};
    }

    void Send(const Json& message) {
        const std::string body = message.dump();
        input += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    }
    void Notify(const char* method, const Json& params) {
        Send({{"jsonrpc", "2.0"}, {"method", method}, {"params", params}});
    }
    void Request(const std::string& method, const Json& params) {
        waiting[++lastId] = method;
        Send({{"jsonrpc", "2.0"}, {"id", lastId}, {"method", method}, {"params", params}});
    }

    void Open(const std::string& path) {
        texts[path] = sources[path];
        Notify("textDocument/didOpen",
               {{"textDocument", {{"uri", UriOf(path)}, {"version", ++version}, {"text", texts[path]}}}});
        versions[path] = version;
    }
    void Close(const std::string& path) {
        texts.erase(path);
        Notify("textDocument/didClose", {{"textDocument", {{"uri", UriOf(path)}}}});
    }
    void Change(const std::string& path) {
        std::string& text = texts[path];
        std::size_t start = NextOffset(text), end = NextOffset(text);
        if (end < start || Next() % 8 != 0) {  // most changes insert, so that some text remains
            end = start;
        }
        const Json range = {{"start", PositionOf(text, start)}, {"end", PositionOf(text, end)}};
        const std::string replacement = NextText();
        text.replace(start, end - start, replacement);
        Notify("textDocument/didChange", {{"textDocument", {{"uri", UriOf(path)}, {"version", ++version}}},
                                          {"contentChanges", {{{"range", range}, {"text", replacement}}}}});
        versions[path] = version;
    }
    void Ask(const std::string& path) {
        // clang-format off
        static constexpr const char* methods[] = {
            "hover", "definition", "references", "documentHighlight", "prepareRename", "rename", "completion",
            "signatureHelp", "documentSymbol", "semanticTokens/full", "semanticTokens/range", "foldingRange",
            "inlayHint", "codeAction", "formatting", "rangeFormatting", "documentLink"};
        // clang-format on
        const std::string& text = sources[path];  // the text as opened, so positions beyond the current end occur too
        const Json position = PositionOf(text, NextOffset(text));
        Request(std::string("textDocument/") + methods[Next() % static_cast<int>(std::size(methods))],
                {{"textDocument", {{"uri", UriOf(path)}}},
                 {"position", position},
                 {"range", {{"start", position}, {"end", PositionOf(text, NextOffset(text))}}},
                 {"newName", NextText()},
                 {"options", {{"tabSize", Next()}, {"insertSpaces", Next() % 2 == 0}}}});
        formatted = path;
    }

    void SendBatch() {
        for (int i = 0; i < 8 && at < script.size(); ++i) {
            const int action = Next() % 16;
            const std::string path = NextPath();
            const bool isOpen = texts.contains(path);
            if (action == 0 && isOpen && path != mainPath) {
                Close(path);
            } else if (!isOpen) {
                Open(path);
            } else if (action < 7) {
                Change(path);
            } else if (action == 7) {
                Request("workspace/symbol", {{"query", NextText()}});
            } else if (action == 8) {
                Notify("$/cancelRequest", {{"id", lastId}});
            } else {
                Ask(path);
                return;  // before further changes, so that the reply is about this text
            }
        }
    }

    korv::Analysis AnalysisOf(const Texts& files, const korv::Wanted& wanted) {
        korv::FileStore store(folder);
        for (const std::string& name : options.includes) {
            store.AddSearchDirectory(name);
        }
        for (const auto& [path, text] : files) {
            store.SetText(path, text);
        }
        return korv::Analyse(options, &store, wanted);
    }

    // A document that is not part of the program forms a separate program, whose messages are published too. Such a
    // state is not checked.
    void CheckDiagnostics() {
        if (texts.empty()) {
            return;
        }
        const bool hasAddresses = options.format == korv::ImageFormat::hex || !options.debug.empty();
        const bool hasNames = options.warnings.IsOn(korv::Warning::unusedLabel) || !options.symbols.empty();
        const auto analysis =
            std::make_shared<korv::Analysis>(AnalysisOf(texts, {.statements = hasAddresses, .names = hasNames}));
        SymbolFileText(options, analysis.get());  // called for its warning
        korv::Snapshot snapshot{analysis, {}, Encoding(), nullptr};
        for (const korv::SourceFile& file : analysis->files) {
            snapshot.uris.push_back(UriOf(file.text->Path()));
        }
        if (!analysis->failure.empty() || std::ranges::any_of(texts, [&](const auto& text) {
                return snapshot.FileOf(text.first) == korv::noIndex;
            })) {
            return;
        }
        std::map<std::string, Json> expected;  // by URI
        for (const auto& [path, text] : texts) {
            expected[UriOf(path)] = {{"uri", UriOf(path)}, {"version", versions[path]}, {"diagnostics", Json::array()}};
        }
        for (std::size_t i = 0; i < std::min<std::size_t>(analysis->messages.size(), 1000); ++i) {
            const korv::Message& message = analysis->messages[i];
            const std::string& uri = snapshot.UriOf(std::max(message.place.file, 0));
            expected[uri]["uri"] = uri;
            expected[uri]["diagnostics"].push_back(Json::parse(korv::TextOf(DiagnosticOf(snapshot, message))));
        }
        for (const auto& [uri, parameters] : published) {
            const Json none = {{"uri", uri}, {"diagnostics", Json::array()}};
            const Json& wanted = expected.contains(uri) ? expected[uri] : none;
            Require(parameters == wanted, "published: " + parameters.dump() + "\nexpected: " + wanted.dump());
            expected.erase(uri);
        }
        Require(expected.empty(), "diagnostics that were not published");
    }

    void CheckFormatting(const Json& edits) {
        Texts changed = texts;
        std::string& text = changed[formatted];
        const korv::StoredText before(formatted, text);
        const auto offsetOf = [&](const Json& edit, const char* end) {
            const korv::Position at = *korv::FindPosition(edit, end);
            const auto line = static_cast<std::int32_t>(at.line) + 1;
            return before.LineStart(line) + korv::ColumnOf(before.Line(line), at.character, Encoding());
        };
        for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
            const std::size_t start = offsetOf(*edit, "/range/start");
            text.replace(start, offsetOf(*edit, "/range/end") - start, std::string((*edit)["newText"]));
        }
        Require(AnalysisOf(changed, {}).image == AnalysisOf(texts, {}).image, "formatting has changed the image");
    }

    [[nodiscard]] korv::PositionEncoding Encoding() const {
        return isUtf8 ? korv::PositionEncoding::utf8 : korv::PositionEncoding::utf16;
    }

    Texts sources;  // the texts with which documents are opened, by path
    std::string script;
    std::size_t at = 0;  // in `script`
    korv::Options options;
    bool isUtf8 = false;
    std::string input;
    Texts texts;  // the current texts of the open documents
    std::map<std::string, std::int64_t> versions;
    std::int64_t version = 0;
    int lastId = 0;
    std::map<int, std::string> waiting;     // methods, by the id of the request
    std::map<std::string, Json> published;  // the last parameters, by URI
    std::string formatted;
};

}  // namespace

extern "C" {
const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=512";
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream stream(std::string(data, data + size));
    std::string switches, script;
    Texts sources;
    std::getline(stream, switches);
    for (const char* name : {"/MAIN.KOR", "/B.KOR", "/C.KOR"}) {
        std::string text;
        std::getline(stream, text, '\xFE');
        sources[folder + name] = Utf8(std::string_view(text).substr(0, 4000));
    }
    constexpr std::size_t longest = 1500;  // with sanitizers, a request after a change may take 30 ms
    script.assign(std::istreambuf_iterator<char>(stream), {});
    script.resize(std::min(script.size(), longest));
    Client client(Utf8(switches), std::move(sources), script);
    korv::Server server(&client, "");
    Require(server.Run() == 1 && server.Failure().empty(), "how it ended");
    return 0;
}
}
