#pragma once

#include <z80ex/z80ex.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace korv_test {

/// A Z80 with 64 KiB of RAM and as much of CP/M as a console program needs. Each run begins with
/// memory cleared and ends when the program returns to address 0.
///
/// The console calls are 1 (key), 2 (character), 9 (text up to "$"), 10 (line) and 0 (leave). Input
/// is not echoed, so that `Output` is the program's own text; after its end come keys 1AH and
/// empty lines. A call leaves rubbish in all registers but IX, IY and SP, as a program must expect
/// of the system.
class Emulator {
  public:
    Emulator()
        : cpu(z80ex_create(Read, memory.data(), Write, memory.data(), ReadPort, nullptr, WritePort,
                           nullptr, /*interrupt vector=*/nullptr, nullptr)) {}
    ~Emulator() { z80ex_destroy(cpu); }
    Emulator(const Emulator&) = delete;
    Emulator& operator=(const Emulator&) = delete;

    /// Runs a `.com` image from address 256 on `input`, whose lines end in a line feed. False: the
    /// image does not fit, or the program has not come to its end after more steps than any test
    /// needs.
    [[nodiscard]] bool RunCom(std::string_view image, std::string_view input) {
        pendingInput = input;
        return Run(image, 0x100, 0x100);
    }

    /// Loads a `.bin` image where its header says and runs it from its execution address. False as
    /// above, or when the header does not fit the image: FE and three little-endian words, the
    /// start, the last and the execution address.
    [[nodiscard]] bool RunBin(std::string_view image) {
        if (image.size() <= BIN_HEADER_SIZE || image[0] != '\xFE') {
            return false;
        }
        const auto byte = [image](std::size_t at) {
            return unsigned{static_cast<unsigned char>(image[at])};
        };
        const auto word = [byte](std::size_t at) { return byte(at) | byte(at + 1) << 8; };
        const std::string_view code = image.substr(BIN_HEADER_SIZE);
        return word(1) + code.size() - 1 == word(3) && Run(code, word(1), word(5));
    }

    const std::string& Output() const { return output; }
    std::string Memory(std::size_t address, std::size_t count) const {
        return {memory.data() + address, memory.data() + address + count};
    }
    std::uint16_t Register(Z80_REG_T reg) const { return z80ex_get_reg(cpu, reg); }

  private:
    bool Run(std::string_view code, unsigned start, unsigned entry) {
        if (start + code.size() > STACK_TOP) {
            return false;
        }
        output.clear();
        memory.fill(0);
        std::copy(code.begin(), code.end(), memory.begin() + start);
        memory[SYSTEM_ENTRY] = 0xC9;
        z80ex_reset(cpu);
        z80ex_set_reg(cpu, regSP, STACK_TOP);
        z80ex_set_reg(cpu, regPC, static_cast<Z80EX_WORD>(entry));
        for (int step = 0; step < STEP_LIMIT && Register(regPC) != 0; ++step) {
            if (Register(regPC) == SYSTEM_ENTRY) {
                CallSystem();
            }
            z80ex_step(cpu);
        }
        return Register(regPC) == 0;
    }

    // Before the instruction at SYSTEM_ENTRY is executed, the call is carried out here; the
    // instruction there is a RET, which leads back. Address 0 is never executed at all.
    void CallSystem() {
        const unsigned call = Register(regBC) & 0xFFU;
        std::uint16_t argument = Register(regDE);
        for (const Z80_REG_T reg : {regAF, regBC, regDE, regHL}) {
            z80ex_set_reg(cpu, reg, 0xA5A5);
        }
        const std::string_view line = pendingInput.substr(0, pendingInput.find('\n'));
        std::size_t used = 0;
        if (call == 0) {
            z80ex_set_reg(cpu, regSP, STACK_TOP);  // the RET at 5 then leaves the program
        } else if (call == 1) {
            const char key = pendingInput.empty() ? '\x1A' : pendingInput[0];
            z80ex_set_reg(cpu, regAF, static_cast<Z80EX_WORD>(static_cast<std::uint8_t>(key) << 8));
            used = 1;
        } else if (call == 2) {
            output += static_cast<char>(argument);
        } else if (call == 9) {
            for (; memory[argument] != '$' && argument != 0xFFFF; ++argument) {
                output += static_cast<char>(memory[argument]);
            }
        } else if (call == 10) {
            const std::string_view taken = line.substr(0, memory[argument]);
            memory[++argument] = static_cast<std::uint8_t>(taken.size());
            for (const char c : taken) {
                memory[++argument] = static_cast<std::uint8_t>(c);
            }
            used = line.size() + 1;
        }
        pendingInput.remove_prefix(std::min(used, pendingInput.size()));
    }

    static Z80EX_BYTE Read(Z80EX_CONTEXT*, Z80EX_WORD address, int, void* ram) {
        return static_cast<Z80EX_BYTE*>(ram)[address];
    }
    static void Write(Z80EX_CONTEXT*, Z80EX_WORD address, Z80EX_BYTE value, void* ram) {
        static_cast<Z80EX_BYTE*>(ram)[address] = value;
    }
    static Z80EX_BYTE ReadPort(Z80EX_CONTEXT*, Z80EX_WORD, void*) { return 0xFF; }
    static void WritePort(Z80EX_CONTEXT*, Z80EX_WORD, Z80EX_BYTE, void*) {}

    static constexpr unsigned SYSTEM_ENTRY = 5;
    static constexpr unsigned STACK_TOP = 0xFF00;  // the word 0 there is the return address
    static constexpr unsigned BIN_HEADER_SIZE = 7;
    static constexpr int STEP_LIMIT = 5'000'000;

    std::array<std::uint8_t, 0x10000> memory{};
    std::string_view pendingInput;  // what RunCom's `input` still holds
    std::string output;
    Z80EX_CONTEXT* cpu;  // owned
};

}  // namespace korv_test
