/// The names in a program and their uses.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "frontend/analysis.h"

namespace korv {

class CIdentifierManager;
class MessageMaker;
struct CIdentifier;
struct CStatement;
struct Keyword;
struct OperandClass;

class NameCollector {
  public:
    /// Collects the names of `table`, which is not owned.
    explicit NameCollector(const CIdentifierManager* table) : table(table) {}

    /// Adds the names in the operands of `statement`, even if it is skipped or has an error.
    /// `keyword` is its row in the vocabulary, or null. Without `places`, the uses are only
    /// counted.
    void AddUses(CStatement& statement, const Keyword* keyword, bool isFaulty,
                 MessageMaker* places);
    /// Returns all names with their uses, sorted by text. Called once.
    [[nodiscard]] std::vector<Name> Take(MessageMaker* places);

  private:
    struct Uses {
        std::size_t count = 0;
        std::vector<Place> places;
    };
    struct Entry;
    void AddNames(const CStatement& statement, std::string_view text, const OperandClass& operand,
                  MessageMaker* places);
    void AddUse(const CStatement& statement, std::string_view name, MessageMaker* places);
    void JoinEarlyUses();
    [[nodiscard]] std::vector<Entry> SortedEntries() const;
    [[nodiscard]] Name NameOf(const Entry& entry, MessageMaker* places);

    const CIdentifierManager* table;
    // The keys are records, since `table` finds a name faster than a map with text keys would.
    std::unordered_map<const CIdentifier*, Uses> uses;
    // Uses of names that were not yet in the table, because they are in a skipped block or follow
    // the first unresolved name of an expression.
    std::unordered_map<std::string, Uses> earlyUses;
};

}  // namespace korv
