#include "diagnostics/message_list.h"

#include <cstring>
#include <new>
#include <utility>

#include "source/file_name_registry.h"

namespace korv {

CMessageList::CMessageList(std::int32_t capacity) : capacity(capacity) {
    messages.reserve(static_cast<std::size_t>(capacity));
}

std::int32_t CMessageList::SetKind(std::int32_t newKind) {
    kindName = newKind == ML_ERROR ? "error" : newKind == ML_WARNING ? "warning" : "fatal error";
    return std::exchange(kind, newKind);
}

std::int32_t CMessageList::AddCopy(std::int32_t number, std::string_view text, std::int32_t file,
                                   std::int32_t line) {
    CMessage message{number, nullptr, file, line};
    if (text.data() != nullptr) {
        message.text.reset(new (std::nothrow) char[text.size() + 1]);
        if (message.text != nullptr) {
            std::memcpy(message.text.get(), text.data(), text.size());
            message.text[text.size()] = '\0';
        }
    }
    return Add(std::move(message));
}

std::int32_t CMessageList::Add(CMessage message) {
    if (Count() == capacity) {
        return -1;
    }
    messages.push_back(std::move(message));
    return 0;
}

std::int32_t CMessageList::Print(std::FILE* stream, std::int32_t limit) const {
    for (const CMessage& message : messages) {
        if (limit-- == 0) {
            break;
        }
        std::fprintf(stream, "%s(%d) : %s X%d : ", fileNames->NameOf(message.file), message.line,
                     kindName, message.number);
        if (message.number < 0) {
            std::fprintf(stream, "Illegal %s number! (Internal error.)", kindName);
        } else {
            std::fputs(MESSAGE_TABLE[static_cast<std::size_t>(message.number)].text, stream);
        }
        if (message.text != nullptr) {
            std::fprintf(stream, " [%s]", message.text.get());
        }
        std::fputc('\n', stream);
    }
    return 0;
}

}  // namespace korv
