/// The names of a program with their uses.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "frontend/analysis.h"

namespace korv {

class CIdentifierManager;
class MessageMaker;
struct CStatement;
struct Keyword;
struct OperandClass;

class NameCollector {
  public:
    /// Adds the names in the operands of `statement`, which may be one that is not assembled, or
    /// that an error was found in.
    /// `keyword` is its row in the vocabulary, or null.
    void AddUses(CStatement& statement, const Keyword* keyword, bool isSkipped, bool isFaulty,
                 MessageMaker* places);
    /// All names by their text, with the uses that were added; those are gone then.
    [[nodiscard]] std::vector<Name> Take(const CIdentifierManager& table, MessageMaker* places);

  private:
    // Finds a text without a copy of it.
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    void AddNames(const CStatement& statement, std::string_view text, const OperandClass& operand,
                  bool isSkipped, MessageMaker* places);

    std::unordered_map<std::string, std::vector<NameUse>, Hash, std::equal_to<>> uses;
};

}  // namespace korv
