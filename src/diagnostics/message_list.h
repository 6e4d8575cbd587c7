/// The bounded lists of errors and warnings. Reporting a message neither prints anything nor stops
/// the run: it only appends a record. The lists are printed after the whole source has been read.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "diagnostics/message_numbers.h"
#include "diagnostics/source_place.h"

namespace korv {

class CFileNameRegistry;
class ReportWriter;

struct CMessage {
    std::int32_t number = 0;  ///< row of MESSAGE_TABLE; negative: an internal error without a row
    std::unique_ptr<char[]> text;  ///< the detail shown in brackets, or null
    SourcePlace place;
};

inline constexpr std::int32_t ML_ERROR = 0;
inline constexpr std::int32_t ML_WARNING = 1;

/// Receives errors and warnings together, in the order in which they are reported, without a limit.
class MessageReceiver {
  public:
    /// `kind` is the kind of the list (ML_*); the other arguments are those of `Report`.
    virtual void OnMessage(std::int32_t kind, std::int32_t number, std::string_view text,
                           const SourcePlace& place) = 0;

  protected:
    ~MessageReceiver() = default;
};

class CMessageList {
  public:
    /// Creates an empty list of `kind` (ML_*) with room for `capacity` messages. The room is
    /// allocated here: even when memory has run out, a message is kept, though without its text.
    /// `fileNames` supplies the names of the files for printing and is not owned.
    CMessageList(std::int32_t capacity, std::int32_t kind, const CFileNameRegistry* fileNames);

    /// Passes all reports to `newReceiver` instead of keeping them. The receiver is not owned.
    void SetReceiver(MessageReceiver* newReceiver) { receiver = newReceiver; }

    /// Reports message `number`; `text` is copied. A view without data means no text and no
    /// brackets; an empty text is printed as empty brackets. A full list drops the message.
    void Report(std::int32_t number, std::string_view text, const SourcePlace& place = {}) {
        // A source can cause a warning on each line. Once the list is full, further warnings cost
        // nothing.
        if (Count() < capacity) {
            Take(number, text, place);
        }
    }

    [[nodiscard]] std::int32_t Count() const { return static_cast<std::int32_t>(messages.size()); }

    /// Prints all messages, one line each.
    void Print(ReportWriter&& to) const;

  private:
    // Keeps the report, or passes it to the receiver if there is one; in that case, the list stays
    // empty.
    void Take(std::int32_t number, std::string_view text, const SourcePlace& place);

    std::int32_t capacity;
    std::int32_t kind;
    const CFileNameRegistry* fileNames;
    std::vector<CMessage> messages;       // in the order of reporting
    MessageReceiver* receiver = nullptr;  // not owned
};

/// Passed to `Report` for a message without a text.
inline constexpr std::string_view noText{};

}  // namespace korv
