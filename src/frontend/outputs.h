/// What a run without errors leaves, each as the text of its file.
#pragma once

#include <string>
#include <vector>

#include "frontend/options.h"
#include "frontend/run_watch.h"

namespace korv {

class CAssembler;
class CIdentifierManager;
class Messages;

/// The bytes of the image, with a load header where the run is one for a binary target.
[[nodiscard]] std::string ImageBytes(CAssembler* assembler);

/// Intel HEX, each block at its address.
[[nodiscard]] std::string HexText(const std::string& image, const std::vector<Block>& blocks);

/// Rules for make and ninja: `target` depends on `files`, and each of these on nothing.
[[nodiscard]] std::string DependencyText(const std::string& target,
                                         const std::vector<std::string>& files);

/// The source with what became of it; `image` is without a header.
[[nodiscard]] std::string ListingText(const std::string& image,
                                      const std::vector<StatementRecord>& records,
                                      Messages* messages);

/// The names of the source that have a value.
[[nodiscard]] std::string SymbolText(const CIdentifierManager& names, SymbolFormat format);

}  // namespace korv
