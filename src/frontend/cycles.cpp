// The times are from the published tables, arranged by prefix. The tests compare every documented
// opcode with an emulator. If the condition is met, a relative jump takes 5 more T-states, a return
// 6 and a call 7; a JP always takes the same time. A block instruction takes 5 more for each
// repetition. Korv also accepts IN F,(C) (ED 70) and OUT (C),F (ED 71). These are not in the
// published tables; they take as long as the neighbouring opcodes.

#include "frontend/cycles.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <initializer_list>

namespace korv {
namespace {

constexpr std::uint8_t prefixCb = 0xCB, prefixEd = 0xED, prefixIx = 0xDD, prefixIy = 0xFD;

using Table = std::array<Cycles, 256>;

struct Row {
    std::uint8_t cycles;
    std::initializer_list<std::uint8_t> opcodes;
};

constexpr Table TableOf(std::initializer_list<Row> rows) {
    Table table{};
    for (const Row& row : rows) {
        for (const std::uint8_t opcode : row.opcodes) {
            table[opcode] = {row.cycles, row.cycles};
        }
    }
    return table;
}

constexpr void Extend(Table* table, std::uint8_t extra,
                      std::initializer_list<std::uint8_t> opcodes) {
    for (const std::uint8_t opcode : opcodes) {
        (*table)[opcode].most = static_cast<std::uint8_t>((*table)[opcode].least + extra);
    }
}

// clang-format off
/// The shortest times of the opcodes without a prefix, 16 to a row; 0 for the prefixes.
constexpr std::uint8_t plainLeast[] = {
    4, 10,  7,  6,  4,  4,  7,  4,  4, 11,  7,  6,  4,  4,  7,  4,
    8, 10,  7,  6,  4,  4,  7,  4, 12, 11,  7,  6,  4,  4,  7,  4,
    7, 10, 16,  6,  4,  4,  7,  4,  7, 11, 16,  6,  4,  4,  7,  4,
    7, 10, 13,  6, 11, 11, 10,  4,  7, 11, 13,  6,  4,  4,  7,  4,
    4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,
    4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,
    4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,
    7,  7,  7,  7,  7,  7,  4,  7,  4,  4,  4,  4,  4,  4,  7,  4,
    4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,
    4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,
    4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,
    4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,
    5, 10, 10, 10, 10, 11,  7, 11,  5, 10, 10,  0, 10, 17,  7, 11,
    5, 10, 10, 11, 10, 11,  7, 11,  5,  4, 10, 11, 10,  0,  7, 11,
    5, 10, 10, 19, 10, 11,  7, 11,  5,  4, 10,  4, 10,  0,  7, 11,
    5, 10, 10,  4, 10, 11,  7, 11,  5,  6, 10,  4, 10,  0,  7, 11,
};

constexpr Table plain = [] {
    Table table{};
    for (std::size_t opcode = 0; opcode < table.size(); ++opcode) {
        table[opcode] = {plainLeast[opcode], plainLeast[opcode]};
    }
    Extend(&table, 5, {0x10, 0x20, 0x28, 0x30, 0x38});                         // DJNZ, JR cc
    Extend(&table, 6, {0xC0, 0xC8, 0xD0, 0xD8, 0xE0, 0xE8, 0xF0, 0xF8});       // RET cc
    Extend(&table, 7, {0xC4, 0xCC, 0xD4, 0xDC, 0xE4, 0xEC, 0xF4, 0xFC});       // CALL cc
    return table;
}();

constexpr Table afterEd = [] {
    Table table = TableOf({
        {8, {0x44, 0x46, 0x56, 0x5E}},                                         // NEG, IM
        {9, {0x47, 0x4F, 0x57, 0x5F}},                                         // LD with I and R
        {12, {0x40, 0x48, 0x50, 0x58, 0x60, 0x68, 0x70, 0x78,                  // IN r,(C)
              0x41, 0x49, 0x51, 0x59, 0x61, 0x69, 0x71, 0x79}},                // OUT (C),r
        {14, {0x45, 0x4D}},                                                    // RETN, RETI
        {15, {0x42, 0x52, 0x62, 0x72, 0x4A, 0x5A, 0x6A, 0x7A}},                // SBC HL, ADC HL
        {18, {0x67, 0x6F}},                                                    // RRD, RLD
        {20, {0x43, 0x53, 0x63, 0x73, 0x4B, 0x5B, 0x6B, 0x7B}},                // LD (nn),rr; LD rr,(nn)
        {16, {0xA0, 0xA1, 0xA2, 0xA3, 0xA8, 0xA9, 0xAA, 0xAB,                  // LDI to OUTD
              0xB0, 0xB1, 0xB2, 0xB3, 0xB8, 0xB9, 0xBA, 0xBB}},                // LDIR to OTDR
    });
    Extend(&table, 5, {0xB0, 0xB1, 0xB2, 0xB3, 0xB8, 0xB9, 0xBA, 0xBB});
    return table;
}();

constexpr Table afterIndexPrefix = TableOf({
    {8, {0xE9}},                                                               // JP (IX)
    {10, {0x23, 0x2B, 0xF9}},                                                  // INC IX, LD SP,IX
    {14, {0x21, 0xE1}},                                                        // LD IX,nn; POP
    {15, {0x09, 0x19, 0x29, 0x39, 0xE5}},                                      // ADD IX; PUSH
    {19, {0x36, 0x46, 0x4E, 0x56, 0x5E, 0x66, 0x6E, 0x7E,                      // LD r,(IX+d)
          0x70, 0x71, 0x72, 0x73, 0x74, 0x75, 0x77,                            // LD (IX+d),r
          0x86, 0x8E, 0x96, 0x9E, 0xA6, 0xAE, 0xB6, 0xBE}},                    // ADD A,(IX+d) to CP
    {20, {0x22, 0x2A}},                                                        // LD (nn),IX; LD IX,(nn)
    {23, {0x34, 0x35, 0xE3}},                                                  // INC (IX+d), EX
});
// clang-format on

constexpr bool IsBit(std::uint8_t opcode) {
    return opcode >> 6 == 1;
}
constexpr bool IsMemory(std::uint8_t opcode) {
    return (opcode & 7) == 6;
}
/// True for the opcodes between SRA and SRL, which the published tables do not contain.
constexpr bool IsHole(std::uint8_t opcode) {
    return opcode >> 3 == 6;
}

constexpr Table afterCb = [] {
    Table table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto opcode = static_cast<std::uint8_t>(i);
        const std::uint8_t cycles = IsHole(opcode)      ? 0
                                    : !IsMemory(opcode) ? 8
                                    : IsBit(opcode)     ? 12
                                                        : 15;
        table[i] = {cycles, cycles};
    }
    return table;
}();

constexpr Table afterIndexedCb = [] {
    Table table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto opcode = static_cast<std::uint8_t>(i);
        const std::uint8_t cycles = IsHole(opcode) || !IsMemory(opcode) ? 0
                                    : IsBit(opcode)                     ? 20
                                                                        : 23;
        table[i] = {cycles, cycles};
    }
    return table;
}();

}  // namespace

Cycles CyclesOf(std::span<const std::uint8_t> bytes) {
    const auto at = [bytes](std::size_t i) { return i < bytes.size() ? bytes[i] : std::uint8_t{}; };
    const auto in = [&](const Table& table, std::size_t i) {
        return i < bytes.size() ? table[bytes[i]] : Cycles{};
    };
    switch (at(0)) {
        case prefixCb:
            return in(afterCb, 1);
        case prefixEd:
            return in(afterEd, 1);
        case prefixIx:
        case prefixIy:  // the displacement precedes the opcode
            return at(1) == prefixCb ? in(afterIndexedCb, 3) : in(afterIndexPrefix, 1);
        default:
            return in(plain, 0);
    }
}

Cycles CyclesOf(const Analysis& analysis, const Statement& statement) {
    if (statement.kind != StatementKind::instruction) {
        return {};
    }
    return CyclesOf(std::span(analysis.image).subspan(statement.offset, statement.count));
}

char* PutCycles(char* to, Cycles cycles) {
    char* const end = to + longestCycles;
    if (cycles.most != 0) {
        to = std::to_chars(to, end, cycles.most).ptr;
    }
    if (cycles.least != cycles.most) {
        *to++ = '/';
        to = std::to_chars(to, end, cycles.least).ptr;
    }
    return to;
}

std::string CyclesText(Cycles cycles) {
    char text[longestCycles];
    return {text, PutCycles(text, cycles)};
}

}  // namespace korv
