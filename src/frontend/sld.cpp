// A line of SLD has eight fields: file, line, file and line of a definition (not used here: "" and
// 0), page, value, type, data. They are separated by "|", so no field may contain a "|" or a line
// end.

#include "frontend/sld.h"

#include <array>
#include <string_view>
#include <vector>

#include "frontend/text_buffer.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::array<std::string_view, 3> keywordsOfComments = {"WPMEM", "LOGPOINT", "ASSERTION"};
constexpr std::uint32_t addressMask = 0xFFFF;

std::string Field(std::string_view text) {
    std::string field(text);
    for (char& c : field) {
        c = c == '|' ? '!' : c == '\n' || c == '\r' ? ' ' : c;
    }
    return field;
}

bool HoldsKeyword(std::string_view comment) {
    for (const std::string_view word : keywordsOfComments) {
        for (std::size_t at = 0; (at = comment.find(word, at)) != std::string_view::npos;) {
            const bool isStart = at == 0 || !HasClass(comment[at - 1], CC_NAME);
            at += word.size();
            if (isStart && (at == comment.size() || !HasClass(comment[at], CC_NAME))) {
                return true;
            }
        }
    }
    return false;
}

struct Line {
    std::int32_t file = 0;
    std::int32_t line = 0;
    std::int32_t page = 0;
    std::int64_t value = 0;
    char type = 'T';
    std::string_view data = {};
};

class SldWriter {
  public:
    explicit SldWriter(const Analysis& analysis) : analysis(analysis) {
        for (const SourceFile& file : analysis.files) {
            fileFields.push_back(Field(file.name));
            holdsKeyword.push_back(HoldsKeyword(file.text->Bytes()));
        }
        text.Put("|SLD.data.version|1\n||K|KEYWORDS|WPMEM,LOGPOINT,ASSERTION\n");
    }

    void Put(const Line& line) {
        const std::string& file = fileFields[static_cast<std::size_t>(line.file)];
        char* to = text.Room(file.size() + 3 * longestNumber + line.data.size() + 16);
        to = PutText(PutText(to, file), "|");
        to = PutText(PutNumber(to, line.line), "||0|");
        to = PutText(PutNumber(to, line.page), "|");
        to = PutText(PutNumber(to, line.value), "|");
        *to++ = line.type;
        text.Advance(PutText(PutText(PutText(to, "|"), line.data), "\n"));
    }

    void PutStatement(const Statement& statement) {
        const std::int32_t file =
            analysis.openings[static_cast<std::size_t>(statement.opening)].file;
        const std::uint32_t address = statement.address & addressMask;
        if (statement.kind == StatementKind::instruction) {
            Put({.file = file, .line = statement.line, .value = address});
        }
        if (holdsKeyword[static_cast<std::size_t>(file)]) {
            PutKeywordComment(file, statement, address);
        }
    }

    void PutName(const Name& name) {
        const bool isConstant = name.kind == NameKind::constant;
        if (!isConstant && name.kind != NameKind::label) {
            return;
        }
        std::string data = "," + Field(name.text) + ",,";  // no module, no local name
        data += isConstant ? "+equ" : "";
        data += isConstant && name.isUsed ? "," : "";
        data += name.isUsed ? "+used" : "";
        Put({.file = name.definition.file,
             .line = name.definition.line,
             .page = isConstant ? -1 : 0,
             .value = isConstant ? name.value : std::int64_t{name.value & 0xFFFF},
             .type = 'L',
             .data = data});
    }

    std::string Take() { return text.Take(); }

  private:
    void PutKeywordComment(std::int32_t file, const Statement& statement, std::uint32_t address);

    const Analysis& analysis;
    TextBuffer text;
    std::vector<std::string> fileFields;
    std::vector<bool> holdsKeyword;  // by file; rarely true
};

// A comment begins at a semicolon outside double quotes. The rest of the statement belongs to it,
// since a backslash at the end of a line continues the comment.
void SldWriter::PutKeywordComment(std::int32_t file, const Statement& statement,
                                  std::uint32_t address) {
    const StoredText& source = *analysis.files[static_cast<std::size_t>(file)].text;
    std::string comment;
    std::int32_t start = 0;  // the line of the comment; 0: not reached yet
    bool isString = false;
    const auto end = static_cast<std::int64_t>(statement.line) + statement.lineCount;
    for (std::int32_t number = statement.line; number < end; ++number) {
        const std::string_view line = source.Line(number);
        if (start != 0) {
            comment.append(" ").append(line);
            continue;
        }
        for (std::size_t i = 0; i < line.size() && start == 0; ++i) {
            isString = isString != (line[i] == '"');
            if (line[i] == ';' && !isString) {
                comment = line.substr(i);
                start = number;
            }
        }
    }
    if (HoldsKeyword(comment)) {
        const std::string data = Field(comment);
        Put({.file = file, .line = start, .value = address, .type = 'K', .data = data});
    }
}

}  // namespace

std::string SldText(const Analysis& analysis) {
    SldWriter writer(analysis);
    writer.Put({.line = 1,
                .page = -1,
                .value = -1,
                .type = 'Z',
                .data = "pages.size:65536,pages.count:32,slots.count:1,slots.adr:0"});
    for (const Statement& statement : analysis.statements) {
        if (!statement.isSkipped) {
            writer.PutStatement(statement);
        }
    }
    for (const Name& name : analysis.names) {
        writer.PutName(name);
    }
    return writer.Take();
}

}  // namespace korv
