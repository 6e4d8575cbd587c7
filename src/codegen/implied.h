/// The instructions without operands, which consist of their frame and one or two bytes.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace korv {

class CAssembler;
struct CStatement;

/// Assembles a statement whose whole encoding is `bytes`.
std::int32_t AssembleImplied(CAssembler* assembler, CStatement* statement,
                             std::span<const std::uint8_t> bytes);

/// The handler of the instruction with the given bytes.
template <std::uint8_t... bytes>
std::int32_t HandleImplied(CAssembler* assembler, CStatement* statement) {
    static constexpr std::array encoding = {bytes...};
    return AssembleImplied(assembler, statement, encoding);
}

}  // namespace korv
