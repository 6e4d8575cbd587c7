// The lookup: names of one character index a table by that character, names of two a table by a
// hash of both without collisions, which the compiler finds. So an operand that is no name costs a
// load and a comparison.

#include "expr/registers.h"

namespace korv {
namespace {

constexpr std::size_t pairSlots = 32;

constexpr std::size_t PairSlot(char first, char second, std::uint32_t factor) {
    const auto key = static_cast<std::uint32_t>(static_cast<std::uint8_t>(first)) * factor +
                     static_cast<std::uint8_t>(second);
    return key % pairSlots;
}

constexpr bool IsPerfect(std::uint32_t factor) {
    std::array<bool, pairSlots> taken{};
    for (const OperandName& row : operandNames) {
        if (row.name.size() == 2) {
            bool& slot = taken[PairSlot(row.name[0], row.name[1], factor)];
            if (slot) {
                return false;
            }
            slot = true;
        }
    }
    return true;
}

constexpr std::uint32_t pairFactor = [] {
    std::uint32_t factor = 1;
    while (!IsPerfect(factor)) {
        ++factor;
    }
    return factor;
}();

// Row numbers; -1 for none. Indexed by the character, and by PairSlot.
constexpr auto singleRows = [] {
    std::array<std::int8_t, 256> rows{};
    rows.fill(-1);
    for (std::size_t i = 0; i < operandNames.size(); ++i) {
        if (operandNames[i].name.size() == 1) {
            rows[static_cast<std::uint8_t>(operandNames[i].name[0])] = static_cast<std::int8_t>(i);
        }
    }
    return rows;
}();
constexpr auto pairRows = [] {
    std::array<std::int8_t, pairSlots> rows{};
    rows.fill(-1);
    for (std::size_t i = 0; i < operandNames.size(); ++i) {
        if (const std::string_view name = operandNames[i].name; name.size() == 2) {
            rows[PairSlot(name[0], name[1], pairFactor)] = static_cast<std::int8_t>(i);
        }
    }
    return rows;
}();
constexpr const OperandName& longName = operandNames.back();
static_assert(longName.name == "FLAGS");

}  // namespace

const OperandName* FindOperandName(std::string_view name) noexcept {
    if (name.size() == 1) {
        const std::int8_t row = singleRows[static_cast<std::uint8_t>(name[0])];
        return row < 0 ? nullptr : &operandNames[static_cast<std::size_t>(row)];
    }
    if (name.size() == 2) {
        const std::int8_t number = pairRows[PairSlot(name[0], name[1], pairFactor)];
        if (number < 0) {
            return nullptr;
        }
        const OperandName& row = operandNames[static_cast<std::size_t>(number)];
        return row.name[0] == name[0] && row.name[1] == name[1] ? &row : nullptr;
    }
    return name == longName.name ? &longName : nullptr;
}

}  // namespace korv
