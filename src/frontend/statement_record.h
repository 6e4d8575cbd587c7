/// What an analysis keeps of a statement, and the blocks of the image that statements make.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "frontend/analysis.h"

namespace korv {

struct CStatement;

/// The mnemonic in the line of `statement`, or what is in its place; empty for none.
[[nodiscard]] std::string_view MnemonicOf(const CStatement& statement);

/// The kind of `statement`, whose mnemonic has the row `keyword`, or null.
[[nodiscard]] StatementKind KindOf(const CStatement& statement, std::string_view mnemonic,
                                   const Keyword* keyword);

/// Divides an image into blocks. Statements come in their order.
class BlockBuilder {
  public:
    void Add(std::uint32_t address, std::uint32_t offset, std::uint32_t count, const Place& place,
             std::int32_t opening);
    [[nodiscard]] std::vector<Block> Take() { return std::move(blocks); }

  private:
    std::vector<Block> blocks;
};

}  // namespace korv
