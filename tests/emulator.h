#pragma once

#include <z80ex/z80ex.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korv_test {

/// A Z80 with 64 KiB of RAM and as much of CP/M as a console program needs: its calls 0 (leave), 1
/// (key), 2 (character), 9 (text up to "$") and 10 (line). Input is not echoed, so that `output` is
/// the program's own text; after its end come keys 1AH and empty lines. A call leaves rubbish in
/// all registers but IX, IY and SP, as a program must expect of the system.
class Emulator {
  public:
    Emulator()
        : cpu(z80ex_create(Read, memory.data(), Write, memory.data(), ReadPort, nullptr, WritePort,
                           nullptr, /*interrupt vector=*/nullptr, nullptr)) {}
    ~Emulator() { z80ex_destroy(cpu); }
    Emulator(const Emulator&) = delete;
    Emulator& operator=(const Emulator&) = delete;

    /// Runs `code` at `start` from `entry` on `input`, whose lines end in a line feed. False: the
    /// code does not fit, or the program has not returned to address 0 after more steps than any
    /// test needs. Once only.
    [[nodiscard]] bool Run(std::string_view code, unsigned start, unsigned entry,
                           std::string_view input) {
        if (start + code.size() > stackTop) {
            return false;
        }
        std::copy(code.begin(), code.end(), memory.begin() + start);
        memory[systemEntry] = 0xC9;
        z80ex_set_reg(cpu, regSP, stackTop);
        z80ex_set_reg(cpu, regPC, static_cast<Z80EX_WORD>(entry));
        for (int step = 0; step < 5'000'000 && z80ex_get_reg(cpu, regPC) != 0; ++step) {
            if (z80ex_get_reg(cpu, regPC) == systemEntry) {
                CallSystem(&input);  // the RET there leads back
            }
            z80ex_step(cpu);
        }
        return z80ex_get_reg(cpu, regPC) == 0;
    }

    std::vector<std::uint8_t> memory = std::vector<std::uint8_t>(0x10000);
    std::string output;

  private:
    void CallSystem(std::string_view* input) {
        const unsigned call = z80ex_get_reg(cpu, regBC) & 0xFFU;
        std::uint16_t argument = z80ex_get_reg(cpu, regDE);
        for (const Z80_REG_T reg : {regAF, regBC, regDE, regHL}) {
            z80ex_set_reg(cpu, reg, 0xA5A5);
        }
        std::size_t used = 0;
        if (call == 0) {
            z80ex_set_reg(cpu, regSP, stackTop);  // where the RET leaves the program
        } else if (call == 1) {
            const unsigned key = input->empty() ? 0x1AU : static_cast<std::uint8_t>((*input)[0]);
            z80ex_set_reg(cpu, regAF, static_cast<Z80EX_WORD>(key << 8));
            used = 1;
        } else if (call == 2) {
            output += static_cast<char>(argument);
        } else if (call == 9) {
            for (; memory[argument] != '$' && argument != 0xFFFF; ++argument) {
                output += static_cast<char>(memory[argument]);
            }
        } else if (call == 10) {
            const std::string_view line = input->substr(0, input->find('\n'));
            const std::string_view taken = line.substr(0, memory[argument]);
            memory[argument + 1U] = static_cast<std::uint8_t>(taken.size());
            std::copy(taken.begin(), taken.end(), memory.begin() + argument + 2);
            used = line.size() + 1;
        }
        input->remove_prefix(std::min(used, input->size()));
    }

    static Z80EX_BYTE Read(Z80EX_CONTEXT*, Z80EX_WORD address, int, void* ram) {
        return static_cast<Z80EX_BYTE*>(ram)[address];
    }
    static void Write(Z80EX_CONTEXT*, Z80EX_WORD address, Z80EX_BYTE value, void* ram) {
        static_cast<Z80EX_BYTE*>(ram)[address] = value;
    }
    static Z80EX_BYTE ReadPort(Z80EX_CONTEXT*, Z80EX_WORD, void*) { return 0xFF; }
    static void WritePort(Z80EX_CONTEXT*, Z80EX_WORD, Z80EX_BYTE, void*) {}

    static constexpr unsigned systemEntry = 5;
    static constexpr unsigned stackTop = 0xFF00;  // the word 0 there is the return address

    Z80EX_CONTEXT* cpu;  // owned
};

}  // namespace korv_test
