/// The mnemonic and kind of a statement, and the blocks of the image.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "frontend/analysis.h"

namespace korv {

struct CStatement;

/// The mnemonic of `statement`, or the unknown word in its place; empty if there is neither.
[[nodiscard]] std::string_view MnemonicOf(const CStatement& statement);

/// The kind of `statement`. `keyword` is the row of its mnemonic, or null.
[[nodiscard]] StatementKind KindOf(const CStatement& statement, std::string_view mnemonic,
                                   const Keyword* keyword);

/// Divides an image into blocks. Statements must be added in order.
class BlockBuilder {
  public:
    void Add(std::uint32_t address, std::uint32_t offset, std::uint32_t count, const Place& place,
             std::int32_t opening);
    [[nodiscard]] std::vector<Block> Take() { return std::move(blocks); }

  private:
    std::vector<Block> blocks;
};

}  // namespace korv
