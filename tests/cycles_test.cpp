// Compares the T-states in the tables with those of an emulated Z80.

#include "frontend/cycles.h"

#include <gtest/gtest.h>
#include <z80ex/z80ex.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "run.h"

namespace korv_test {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// The T-states of an instruction, given these register values. In AF, only the flags matter.
int Measure(const Bytes& bytes, unsigned af, unsigned bc) {
    std::array<Z80EX_BYTE, 0x10000> memory{};
    std::ranges::copy(bytes, memory.begin());
    const std::unique_ptr<Z80EX_CONTEXT, decltype(&z80ex_destroy)> cpu = {
        z80ex_create([](auto*, Z80EX_WORD at, int, void* ram) { return static_cast<Z80EX_BYTE*>(ram)[at]; },
                     memory.data(), [](auto*, Z80EX_WORD, Z80EX_BYTE, void*) {}, nullptr,
                     [](auto*, Z80EX_WORD, void*) -> Z80EX_BYTE { return 0; }, nullptr,
                     [](auto*, Z80EX_WORD, Z80EX_BYTE, void*) {}, nullptr, nullptr, nullptr),
        z80ex_destroy};
    z80ex_set_reg(cpu.get(), regPC, 0);
    z80ex_set_reg(cpu.get(), regAF, static_cast<Z80EX_WORD>(af));
    z80ex_set_reg(cpu.get(), regBC, static_cast<Z80EX_WORD>(bc));
    for (const Z80_REG_T reg : {regDE, regHL, regIX, regIY, regSP}) {
        z80ex_set_reg(cpu.get(), reg, 0x8000);
    }
    int cycles = z80ex_step(cpu.get());
    while (z80ex_last_op_type(cpu.get()) != 0) {  // a prefix counts as a step
        cycles += z80ex_step(cpu.get());
    }
    return cycles;
}

// Every condition is met with either all flags clear or all flags set. One value of BC ends DJNZ and the block
// instructions; the other makes them repeat.
korv::Cycles Measured(const Bytes& bytes) {
    std::vector<int> all;
    for (const unsigned af : {0x5500U, 0x55FFU}) {
        for (const unsigned bc : {0x0001U, 0x0101U}) {
            all.push_back(Measure(bytes, af, bc));
        }
    }
    const auto [least, most] = std::ranges::minmax(all);
    return {static_cast<std::uint8_t>(least), static_cast<std::uint8_t>(most)};
}

TEST(CyclesTest, AgreeWithTheEmulatorForEveryDocumentedOpcode) {
    const std::vector<Bytes> pages = {{}, {0xCB}, {0xED}, {0xDD}, {0xFD}, {0xDD, 0xCB, 5}, {0xFD, 0xCB, 5}};
    std::vector<int> compared;
    for (Bytes bytes : pages) {
        compared.push_back(0);
        bytes.resize(bytes.size() + 4, 0x30);  // not a documented opcode after a prefix
        std::uint8_t& opcode = bytes[bytes.size() - 4];
        for (int i = 0; i < 0x100; ++i) {
            opcode = static_cast<std::uint8_t>(i);
            const korv::Cycles cycles = korv::CyclesOf(bytes);
            if (cycles.most != 0) {
                ++compared.back();
                EXPECT_EQ(korv::CyclesText(cycles), korv::CyclesText(Measured(bytes)))
                    << ToHex(std::string(bytes.begin(), bytes.end()));
            }
        }
    }
    EXPECT_EQ(compared, (std::vector{252, 248, 60, 39, 39, 31, 31})) << "698 documented, ED 70 and ED 71";
}

TEST(CyclesTest, EveryInstructionThatAssemblesHasThem) {
    for (const std::string& table : TablesIn("encodings")) {
        for (const Encoding& encoding : ReadEncodings(table)) {
            Bytes bytes;
            for (std::size_t i = 0; i < encoding.bytes.size(); i += 2) {
                bytes.push_back(static_cast<std::uint8_t>(std::stoi(encoding.bytes.substr(i, 2), nullptr, 16)));
            }
            EXPECT_NE(korv::CyclesText(korv::CyclesOf(bytes)), "") << encoding.place << ": " << encoding.instruction;
        }
    }
}

}  // namespace
}  // namespace korv_test
