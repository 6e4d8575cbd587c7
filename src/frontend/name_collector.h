/// The names of a program with their uses.
#pragma once

#include <cstddef>
#include <span>
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
    /// For the names of `table`, which is not owned.
    explicit NameCollector(const CIdentifierManager* table) : table(table) {}

    /// Adds the names in the operands of `statement`, which may be one that is not assembled, or
    /// that an error was found in. `keyword` is its row in the vocabulary, or null. Without
    /// `places` the uses are only counted.
    void AddUses(CStatement& statement, const Keyword* keyword, bool isSkipped, bool isFaulty,
                 MessageMaker* places);
    /// All names by their text, with the uses that were added; those are gone then.
    [[nodiscard]] std::vector<Name> Take(MessageMaker* places);

  private:
    struct Uses {
        std::size_t count = 0;
        std::vector<NameUse> places;
    };
    struct Entry;
    void AddNames(const CStatement& statement, std::string_view text, const OperandClass& operand,
                  bool isSkipped, MessageMaker* places);
    void AddUse(const CStatement& statement, std::string_view name, bool isSkipped,
                MessageMaker* places);
    void JoinEarlyUses();
    [[nodiscard]] std::vector<Entry> SortedEntries() const;
    [[nodiscard]] Name NameOf(const Entry& entry, MessageMaker* places);
    static void Sort(std::span<Entry> entries, std::size_t offset);

    const CIdentifierManager* table;
    // The table finds a name more quickly than a map of texts would.
    std::unordered_map<const CIdentifier*, Uses> uses;
    // Of names that the table did not have: those in a skipped block, or after the one that an
    // expression waits for.
    std::unordered_map<std::string, Uses> earlyUses;
};

}  // namespace korv
