/// The steps of a run, reported to a front end as they happen.
#pragma once

#include <cstdint>
#include <string>

#include "diagnostics/message_list.h"

namespace korv {

struct CStatement;

/// Also receives the messages of the run.
class RunObserver : public MessageReceiver {
  public:
    /// The built-in names have been entered, and nothing has been read yet.
    virtual void OnStart() = 0;

    /// The source file `path` has been opened. Its lines are assembled in `statement` until
    /// `OnFileEnd`.
    virtual void OnFile(const std::string& path, std::int32_t number, CStatement* statement) = 0;
    virtual void OnFileEnd() = 0;

    /// The bytes of the file `path` are about to be included.
    virtual void OnIncludedBytes(const std::string& path) = 0;

    /// `statement`, which spans `lineCount` physical lines, has been assembled or skipped. It may
    /// have no text.
    virtual void OnStatement(CStatement& statement, std::uint32_t lineCount) = 0;

  protected:
    ~RunObserver() = default;
};

}  // namespace korv
