/// The names of a program with their uses.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "frontend/analysis.h"

namespace korv {

class CIdentifierManager;
class MessageMaker;
struct CStatement;

/// Whether some operand of `statement`, which was assembled without an error, may hold a name.
[[nodiscard]] bool MayHoldName(CStatement& statement);

class NameCollector {
  public:
    /// Adds the names in the operands of `statement`, which may be one that is not assembled.
    void AddUses(const CStatement& statement, bool isSkipped, MessageMaker* places);
    /// All names by their text, with the uses that were added; those are gone then.
    [[nodiscard]] std::vector<Name> Take(const CIdentifierManager& table, MessageMaker* places);

  private:
    std::unordered_map<std::string, std::vector<NameUse>> uses;
};

}  // namespace korv
