#include "frontend/statement_record.h"

#include <algorithm>

#include "codegen/handler.h"
#include "driver/statement.h"
#include "source/char_class.h"

namespace korv {

std::string_view MnemonicOf(const CStatement& statement) {
    const char* start = statement.text;
    if (statement.HasLabel()) {
        const std::string_view rest = statement.label.data() + statement.label.size();
        start = rest.substr(std::min<std::size_t>(1, rest.size())).data();  // after the colon
    }
    start = SkipBlanks(start);
    const char* end = start;
    while (*end != '\0' && !HasClass(*end, CC_BLANK)) {
        ++end;
    }
    return {start, end};
}

StatementKind KindOf(const CStatement& statement, std::string_view mnemonic,
                     const Keyword* keyword) {
    if (mnemonic.empty()) {
        return statement.HasLabel() ? StatementKind::label : StatementKind::blank;
    }
    if (keyword == nullptr) {
        return StatementKind::unknown;
    }
    switch (keyword->group) {
        case KeywordGroup::instruction:
            return StatementKind::instruction;
        case KeywordGroup::data:
            return StatementKind::data;
        case KeywordGroup::space:
            return StatementKind::space;
        case KeywordGroup::directive:
            break;
    }
    return StatementKind::directive;
}

void BlockBuilder::Add(std::uint32_t address, std::uint32_t offset, std::uint32_t count,
                       const Place& place, std::int32_t opening) {
    constexpr std::uint32_t addresses = 0x10000;
    for (std::uint32_t done = 0; done < count;) {
        const std::uint32_t at = (address + done) % addresses;
        const std::uint32_t piece = std::min(count - done, addresses - at);
        if (blocks.empty() || blocks.back().address + blocks.back().count != at) {
            blocks.push_back({at, offset + done, 0, place, opening});
        }
        blocks.back().count += piece;
        done += piece;
    }
}

}  // namespace korv
