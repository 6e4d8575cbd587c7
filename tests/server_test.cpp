// korv-ls: whole sessions as the client sees them, and a comparison with korv-as on all sources in the tables.

#include "server/server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <regex>
#include <set>
#include <span>

#include "faults.h"
#include "frontend/analyser.h"
#include "frontend/file_store.h"
#include "frontend/message_printer.h"
#include "run.h"
#include "server/programs.h"
#include "server/run_server.h"
#include "server/uri.h"

namespace korv_test {
namespace {

using korv::Programs;

// A client that sends further messages only when the server waits for one.
class QueuedClient : public korv::platform::Connection {
  public:
    std::string input;
    std::string output;
    std::function<void()> refill;  // adds them to `input`

    bool IsInputWaiting() const override { return !input.empty(); }
    std::size_t Read(char* buffer, std::size_t count) override {
        input.empty() ? refill() : void();
        const std::size_t part = std::min({count, input.size(), std::size_t{7}});  // splits headers and bodies
        input.copy(buffer, part);
        input.erase(0, part);
        return part;
    }
    bool Write(std::string_view bytes) override {
        output += bytes;
        return true;
    }
    void Send(const std::string& body) {
        input += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    }
    Strings Received() {
        Strings bodies;
        for (std::size_t at = 0; at < output.size();) {
            const std::size_t end = output.find("\r\n\r\n", at);
            const std::size_t size = std::stoul(output.substr(output.find("Content-Length: ", at) + 16));
            bodies.push_back(output.substr(end + 4, size));
            at = end + 4 + size;
        }
        return bodies;
    }
};

// Adds "jsonrpc", which the tables leave out, to a message, and replaces "$URI" with `here`.
std::string Whole(std::string text, const std::string& here) {
    text = ReplaceAll(text, "$URI", here);
    return text.starts_with("{") ? "{\"jsonrpc\":\"2.0\"," + text.substr(1) : text;
}

std::string OpenMessage(const std::string& uri, const std::string& text) {
    return R"({"method":"textDocument/didOpen","params":{"textDocument":{"uri":")" + uri + R"(","version":1,"text":")" +
           text + "\"}}}";
}

// A message without quotes, with positions as "LINE:COLUMN" and ranges as "LINE:COLUMN-LINE:COLUMN", counted from 0.
std::string Short(const std::string& body) {
    static const std::regex position(R"(\{character:(\d+),line:(\d+)\})"), range(R"(\{end:([\d:]+),start:([\d:]+)\})");
    return std::regex_replace(std::regex_replace(ReplaceAll(body, "\"", ""), position, "$2:$1"), range, "$2-$1");
}

// Published diagnostics as "shown URI VERSION | 1:2-5 error CODE TEXT <- URI 1:2-5 TEXT", counted from 1.
std::string ShownText(const std::string& body) {
    const korv::Json parameters = korv::Json::parse(body)["params"];
    const auto message = [](const korv::Json& range, const korv::Json& text) {
        const auto column = [&](const char* end) { return std::to_string(range[end]["character"].get<int>() + 1); };
        return std::to_string(range["start"]["line"].get<int>() + 1) + ":" + column("start") + "-" + column("end") +
               " " + std::string(text);
    };
    std::string all = "shown " + std::string(parameters["uri"]);
    all += parameters.contains("version") ? " " + parameters["version"].dump() : "";
    for (const korv::Json& each : parameters["diagnostics"]) {
        const std::string kind = std::array{"", "error ", "warning "}.at(each["severity"]);
        const std::string code = each.contains("code") ? std::string(each["code"]) + " " : "";
        all += " | " + message(each["range"], kind + code + std::string(each["message"]));
        for (const korv::Json& related : each.value("relatedInformation", korv::Json::array())) {
            const korv::Json& location = related["location"];
            all += " <- " + std::string(location["uri"]) + " " + message(location["range"], related["message"]);
        }
    }
    return ReplaceAll(all, "\n", "; ");
}

class ServerSessionTest : public testing::TestWithParam<Block> {};

TEST_P(ServerSessionTest, Holds) {
    const TempDir directory;
    const std::string here = korv::UriOfPath(directory.Path());
    Block lines;
    for (const TableLine& line : GetParam()) {
        if (line.text.starts_with("  ")) {
            lines.back().text += line.text.substr(2);
        } else {
            lines.push_back(line);
        }
    }
    QueuedClient client;
    Strings expected;
    std::string end = "status 1";
    const auto take = [&](const auto& place, const std::string& line) {
        const Strings words = Split(line, ' ');
        const std::string text = line.substr(std::min(line.size(), words[0].size() + 1));
        if (words[0] == ">") {
            client.Send(Whole(text, here));
        } else if (words[0] == "start") {
            client.Send(Whole(R"({"id":1,"method":"initialize","params":)" + text + "}", here));
            expected.emplace_back(R"({"id":1,"result":...)");
        } else if (words[0] == "ask") {
            static const std::regex position(R"((\d+):(\d+))"), range("(.+)-(.+)");
            const std::string at = std::regex_replace(words.at(2), position, R"({"line":$1,"character":$2})");
            const std::string kind = Contains(at, "-") ? "range" : "position";
            const auto ask = [&](const std::string& parameter, const std::string& reply) {
                client.Send(Whole(R"({"id":2,"method":")" + words[1] + R"(","params":{"newName":"new","query":"o",)" +
                                      R"("textDocument":{"uri":"$URI/a.kor"})" + parameter + "}}",
                                  here));
                expected.push_back("{id:2," + ReplaceAll(reply, "$URI", here) + "}");
            };
            ask(at == "=" ? "" : ",\"" + kind + "\":" + std::regex_replace(at, range, R"({"start":$1,"end":$2})"),
                (Contains(line, " = error:") ? "" : "result:") + line.substr(line.find(" = ") + 3));
            if (at != "=") {
                ask("", "error:{code:-32602,message:missing or wrong: " + kind + "}");
            }
        } else if (words[0] == "<") {
            expected.push_back(ReplaceAll(text, "$URI", here));
        } else if (words[0] == "open") {
            client.Send(OpenMessage(here + "/" + words.at(1), text.substr(words[1].size() + 1)));
        } else if (words[0] == "shown") {
            const std::string shown = ReplaceAll(line, "shown ", "shown " + here + "/");
            expected.push_back(ReplaceAll(shown, "<- ", "<- " + here + "/"));
        } else if (words[0] == "file") {
            const std::string plain = ReplaceAll(text.substr(words[1].size() + 1), "|", "\n");
            WriteFile(words.at(1), ReplaceAll(plain, "\\0", std::string(1, '\0')) + "\n");
        } else if (words[0] == "status") {
            end = line;
        } else {
            ASSERT_EQ("case", words[0]) << place;
        }
    };
    auto next = lines.begin();
    client.refill = [&] {
        for (; next != lines.end() && (client.input.empty() || !next->text.starts_with("file ")); ++next) {
            take(next->place, next->text);
        }
    };
    korv::Server server(&client, "VERSION");
    EXPECT_EQ(end, "status " + std::to_string(server.Run()));
    EXPECT_EQ("", server.Failure());
    Strings got;
    for (const std::string& body : client.Received()) {
        const bool isShown = got.size() < expected.size() && expected[got.size()].starts_with("shown ");
        got.push_back(isShown ? ShownText(body) : ReplaceAll(body, "\"jsonrpc\":\"2.0\",", ""));
        if (!isShown && got.size() <= expected.size() && !Contains(expected[got.size() - 1], "\"")) {
            got.back() = Short(got.back());
        }
    }
    for (std::size_t i = 0; i < std::min(got.size(), expected.size()); ++i) {
        if (const std::size_t cut = expected[i].find("..."); cut != std::string::npos) {  // the rest does not matter
            expected[i].resize(cut);
            got[i].resize(std::min(cut, got[i].size()));
        }
    }
    EXPECT_EQ(expected, got);
}

INSTANTIATE_TEST_SUITE_P(Tables, ServerSessionTest, testing::ValuesIn(ReadBlocks(ProjectPath("tests/sessions.txt"))),
                         [](const auto& test) { return TestName(test.param); });

TEST(ServerTest, EndsAfterAFaultyHeaderOrOption) {
    // clang-format off
    const std::array<std::string, 3> rows[] = {
        {"-h", "", "Usage: korv-ls(.*\n)*Exit status: .*\n"}, {"--stdio --help", "", "Usage: korv-ls(.*\n)*"},
        {"-V", "", "korv-ls .*\n"}, {"--version", "", "korv-ls .*\n"}, {"-x", "", "korv-ls: error: unknown option '-x'; .*\n.*2\n"},
        {"", std::string(4096, 'x'), "exit status 1\n"}, {"", std::string(4097, 'x'), "korv-ls: error: the input is not .*\n.*1\n"},
        {"", "Content-Length: 17\r\n\r\n{\"method\":\"exit\"}", "exit status 1\n"},
        {"", "Content-Length: 67108864\r\n\r\n{}", "exit status 1\n"},
        {"", "Content-Type: x\r\n\r\n" + std::string(70000, 'x'), "korv-ls: error: a message has no Content-Length\n.*1\n"},
        {"", "content-length:  33\r\nContent-Type: x\r\n\r\n{\"id\":1,\"method\":\"initialize\"}   Content-Length: 67108865\r\n\r\n{}",
         "Content-Length: \\d+\r\n\r\n.\"jsonrpc\":\"2.0\",\"id\":1,.*korv-ls: error: a message is longer than 64 MiB\n.*1\n"},
        {"", "Content-Length: \r\n\r\n", "korv-ls: error: Content-Length is not a number\n.*1\n"},
        {"", "Content-Length: 5x\r\n\r\n{}", "korv-ls: error: Content-Length is not a number\n.*1\n"}};
    // clang-format on
    for (const auto& [words, input, printed] : rows) {
        const TempDir directory;
        WriteFile("stdin", input);
        std::string output;
        output += RunKorvAs(words.empty() ? Strings() : Split(words, ' '), &output, korv::RunServer);
        EXPECT_TRUE(std::regex_match(output, std::regex(printed))) << output;
    }
    const auto serveWithoutMemory = [] { return FailAllocation(1, true), korv::RunServer(1, nullptr); };
    EXPECT_EXIT(serveWithoutMemory(), testing::ExitedWithCode(1), "^korv-ls: error: out of memory\n$");
}

TEST(ServerTest, UrisArePathsAndBack) {
    const char* rows[][2] = {{"file:///a%20b/%C3%A4~_.kor", "/a b/\xC3\xA4~_.kor"},
                             {"file://host/a", "//host/a"},
                             {"FILE:/a%zz", "/a%zz"},
                             {"file://localhost/a", "/a"}};
    for (const auto& [uri, path] : rows) {
        EXPECT_EQ(path, korv::PathOfUri(uri));
        EXPECT_EQ(path, korv::PathOfUri(korv::UriOfPath(path)));
    }
    EXPECT_EQ(std::nullopt, korv::PathOfUri("untitled:a"));
    EXPECT_EQ(std::nullopt, korv::PathOfUri("file:///a%00"));
    if (isWindows) {
        EXPECT_EQ("c:/a", korv::PathOfUri("file:///c%3A/a"));
        EXPECT_EQ("file:///C%3A/a/b", korv::UriOfPath("C:\\a\\b"));
        EXPECT_EQ("file://host/a", korv::UriOfPath("\\\\host\\a"));
    } else {
        EXPECT_EQ("file:///a%20~_%5Cb", korv::UriOfPath("/a ~_\\b"));
    }
}

// For each file, the server must publish the messages that korv-as prints.
TEST(ServerTest, DiagnosticsAreTheMessagesOfKorvAs) {
    std::size_t count = 0;
    for (const std::string folder : {"cases", "frontend"}) {
        for (const std::string& table : TablesIn(folder)) {
            for (const Block& block : Contains(table, "mistakes") ? std::vector<Block>{} : ReadBlocks(table)) {
                const Case test = ReadCase(block);
                const auto main = test.files.find("Main.Kor");
                if (main == test.files.end()) {
                    continue;
                }
                const TempDir directory;
                for (const auto& [name, contents] : test.files) {
                    WriteFile(name, contents);
                }
                const std::string path = directory.Path() + "/Main.Kor";
                korv::Documents documents;
                korv::Workspace workspace;
                Programs programs(&documents, &workspace);
                documents.Open(path, {{"uri", korv::UriOfPath(path)}, {"text", main->second}});
                programs.OnFilesChanged();
                programs.Update();
                std::multiset<std::string> shown, printed;
                for (const auto& [file, list] : programs.Diagnostics()) {
                    for (const korv::Json& each : list) {
                        shown.insert(file + ":" + std::to_string(each["range"]["start"]["line"].get<int>() + 1) +
                                     " severity " + each["severity"].dump() + " " + std::string(each["message"]));
                    }
                }
                korv::FileStore store;
                korv::Options options;
                options.source = "Main.Kor";
                options.maxErrors = 0;
                const korv::Analysis analysis = korv::Analyse(options, &store, {});
                for (const korv::Message& message :
                     std::span(analysis.messages).first(std::min<std::size_t>(analysis.messages.size(), 1000))) {
                    const auto& place = message.place;
                    printed.insert(analysis.files[static_cast<std::size_t>(std::max(place.file, 0))].text->Path() +
                                   ":" + std::to_string(std::max(place.line, 1)) + " severity " +
                                   (message.severity == korv::Severity::error ? "1 " : "2 ") + SentenceOf(message) +
                                   (message.note.empty() ? "" : "\nnote: " + message.note));
                }
                EXPECT_EQ(printed, shown) << block.front().place;
                count += shown.size();
            }
        }
    }
    EXPECT_LT(300U, count);
}

}  // namespace
}  // namespace korv_test
