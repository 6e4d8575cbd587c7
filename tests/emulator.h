#pragma once

#include <z80ex/z80ex.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace korv_test {

/// A Z80 with 64 KiB of RAM and as much of CP/M as a console program needs. Each run begins with
/// memory cleared and ends when the program returns to address 0.
///
/// The console calls are 1 (key), 2 (character), 9 (text up to "$"), 10 (line) and 0 (leave). Input
/// is not echoed, so that `Output` is the program's own text; behind its end come keys 1AH and
/// empty lines. A call leaves rubbish in all registers but IX, IY and SP, as a program must expect
/// of the system.
class Emulator {
  public:
    Emulator();
    ~Emulator() { z80ex_destroy(cpu); }
    Emulator(const Emulator&) = delete;
    Emulator& operator=(const Emulator&) = delete;

    /// Runs a `.com` image from address 256 on `input`, whose lines end in a line feed. False: the
    /// image does not fit, or the program has not come to its end after more steps than any test
    /// needs.
    [[nodiscard]] bool RunCom(std::string_view image, std::string_view input);

    /// Loads a `.bin` image where its header says and runs it from its execution address. False as
    /// above, or when the header does not fit the image.
    [[nodiscard]] bool RunBin(std::string_view image);

    const std::string& Output() const { return output; }
    std::string Memory(std::size_t address, std::size_t count) const;
    unsigned Byte(unsigned address) const { return memory[address & 0xFFFF]; }
    unsigned Word(unsigned address) const { return Byte(address) | Byte(address + 1) << 8; }
    std::uint16_t Register(Z80_REG_T reg) const { return z80ex_get_reg(cpu, reg); }

  private:
    bool Run(std::string_view code, unsigned start, unsigned entry);
    void CallSystem();

    std::array<std::uint8_t, 0x10000> memory{};
    std::string_view pendingInput;  // the part of RunCom's `input` that is not read yet
    std::string output;
    Z80EX_CONTEXT* cpu;  // owned
};

}  // namespace korv_test
