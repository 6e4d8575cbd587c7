#include "diagnostics/message_list.h"

#include <array>
#include <cstdio>

#include "diagnostics/report_writer.h"
#include "source/file_name_registry.h"

namespace korv {

CMessageList::CMessageList(std::int32_t capacity, std::int32_t kind,
                           const CFileNameRegistry* fileNames)
    : capacity(capacity), kind(kind), fileNames(fileNames) {
    messages.reserve(static_cast<std::size_t>(capacity));
}

void CMessageList::Take(std::int32_t number, std::string_view text, const SourcePlace& place) {
    if (receiver != nullptr) {
        receiver->OnMessage(kind, number, text, place);
    } else {
        messages.push_back({number, text.data() != nullptr ? CopyOf(text) : nullptr, place});
    }
}

void CMessageList::Print(ReportWriter&& to) const {
    const char* const kindName = kind == ML_ERROR ? "error" : "warning";
    for (const CMessage& message : messages) {
        std::array<char, 64> text;
        const auto putFormatted = [&](const char* format, auto... values) {
            std::snprintf(text.data(), text.size(), format, values...);
            to.Put(text.data());
        };
        to.PutForeign(fileNames->NameOf(message.place.file));
        putFormatted("(%d) : %s X%d : ", message.place.line, kindName, message.number);
        if (message.number < 0) {
            putFormatted("Illegal %s number! (Internal error.)", kindName);
        } else {
            to.Put(MESSAGE_TABLE[static_cast<std::size_t>(message.number)].text);
        }
        if (message.text != nullptr) {
            to.Put(" [");
            to.PutForeign(message.text.get());
            to.Put("]");
        }
        to.Put("\n");
    }
}

}  // namespace korv
