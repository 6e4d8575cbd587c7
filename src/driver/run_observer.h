/// What a front end may want to know of a run while it goes on. All of it is called at moments that
/// are rare, or, for the statements, only when there is an observer.
#pragma once

#include <cstdint>
#include <string>

#include "diagnostics/message_list.h"

namespace korv {

struct CStatement;

/// Hears of the messages of the run too.
class RunObserver : public MessageReceiver {
  public:
    /// The names that every run has are in the table, and nothing has been read yet.
    virtual void OnStart() = 0;

    /// The file `path` has been opened: a source with its number, whose lines will be assembled in
    /// `statement` until `OnFileEnd`; or, with the number 0 and null, one whose bytes are included.
    virtual void OnFile(const std::string& path, std::int32_t number, CStatement* statement) = 0;
    virtual void OnFileEnd() = 0;

    /// `statement` is about to append `count` bytes at once. False: it appends none.
    virtual bool OnBlock(CStatement& statement, std::int32_t count) = 0;

    /// `statement`, of `lineCount` physical lines, has been assembled, also one without text.
    virtual void OnStatement(CStatement& statement, std::uint32_t lineCount) = 0;

  protected:
    ~RunObserver() = default;
};

}  // namespace korv
