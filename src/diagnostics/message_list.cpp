#include "diagnostics/message_list.h"

#include <array>
#include <cstdio>

#include "diagnostics/report_writer.h"
#include "source/file_name_registry.h"

namespace korv {

CMessageList::CMessageList(std::int32_t capacity) : capacity(capacity) {
    messages.reserve(static_cast<std::size_t>(capacity));
}

Status CMessageList::Take(std::int32_t number, std::string_view text, const SourcePlace& place) {
    if (receiver != nullptr) {
        receiver->OnMessage(kind, number, text, place);
        return 0;
    }
    return Add({number, text.data() != nullptr ? CopyOf(text) : nullptr, place});
}

Status CMessageList::Add(CMessage message) {
    if (Count() == capacity) {
        return listIsFull;
    }
    messages.push_back(std::move(message));
    return 0;
}

std::int32_t CMessageList::Print(ReportWriter&& to, std::int32_t limit) const {
    const char* const kindName = kind == ML_ERROR     ? "error"
                                 : kind == ML_WARNING ? "warning"
                                                      : "fatal error";
    for (const CMessage& message : messages) {
        if (limit-- == 0) {
            break;
        }
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
    return 0;
}

}  // namespace korv
