/// The bounded lists of errors and warnings. Reporting prints nothing and stops nothing: it appends
/// a record, and the lists are printed when all the source has been read.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "diagnostics/message_numbers.h"
#include "diagnostics/source_place.h"

namespace korv {

class CFileNameRegistry;
class ReportWriter;

struct CMessage {
    std::int32_t number = 0;  ///< row of MESSAGE_TABLE; below 0: an internal error without a row
    std::unique_ptr<char[]> text;  ///< the detail shown in brackets, or null
    SourcePlace place;
};

inline constexpr std::int32_t ML_ERROR = 0;
inline constexpr std::int32_t ML_WARNING = 1;

/// For `Print`: no limit.
inline constexpr std::int32_t allMessages = -1;

/// Takes the messages in the order in which they arise, errors and warnings together and however
/// many there are.
class MessageReceiver {
  public:
    /// `kind` is that of the list; the others are as given to `Report`.
    virtual void OnMessage(std::int32_t kind, std::int32_t number, std::string_view text,
                           const SourcePlace& place) = 0;

  protected:
    ~MessageReceiver() = default;
};

class CMessageList {
  public:
    /// An empty list of errors with room for `capacity` messages. It is taken here, so that a
    /// report needs no memory but for its text: the list has to work just when there is none left.
    explicit CMessageList(std::int32_t capacity);

    /// The registry, not owned, that turns file numbers into names when the list is printed.
    void SetFileNames(const CFileNameRegistry* registry) { fileNames = registry; }

    /// Gives all reports to `newReceiver`, not owned, in place of keeping them.
    void SetReceiver(MessageReceiver* newReceiver) { receiver = newReceiver; }

    /// ML_ERROR, ML_WARNING; anything else is a fatal error. Result: the kind before.
    std::int32_t SetKind(std::int32_t newKind) { return std::exchange(kind, newKind); }

    /// Reports message `number`; `text` is copied. A view without data means that there is no text
    /// and no brackets; an empty text gives empty brackets. Result: as `Add`. Nobody has to look at
    /// it.
    Status Report(std::int32_t number, std::string_view text, const SourcePlace& place = {}) {
        // A source may have a warning for each line: once the list is full they cost nothing.
        return Count() == capacity ? listIsFull : Take(number, text, place);
    }

    /// Takes over `message`. Result: 0, or `listIsFull`, and then the message is dropped.
    Status Add(CMessage message);

    [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(messages.size()); }

    /// Prints the first `limit` messages, or `allMessages`, a line each. Result: 0.
    std::int32_t Print(ReportWriter&& to, std::int32_t limit) const;

  private:
    // Keeps the report, or gives it to the receiver, with which the list stays empty.
    Status Take(std::int32_t number, std::string_view text, const SourcePlace& place);

    std::int32_t capacity;
    std::int32_t kind = ML_ERROR;
    std::vector<CMessage> messages;                // in the order of reporting
    const CFileNameRegistry* fileNames = nullptr;  // not owned
    MessageReceiver* receiver = nullptr;           // not owned
};

/// For `Report`: a message without a text.
inline constexpr std::string_view noText{};

}  // namespace korv
