// The system is met at one address: before the instruction at 5 is executed, the call is carried
// out here; the instruction there is a RET, which leads back. Address 0 is never executed at all.

#include "emulator.h"

#include <algorithm>

namespace korv_test {

namespace {

constexpr unsigned SYSTEM_ENTRY = 5;
constexpr unsigned STACK_TOP = 0xFF00;  // the word 0 there is the return address of the program
constexpr unsigned BIN_HEADER_SIZE = 7;
constexpr int STEP_LIMIT = 5'000'000;

Z80EX_BYTE Read(Z80EX_CONTEXT*, Z80EX_WORD address, int, void* ram) {
    return static_cast<Z80EX_BYTE*>(ram)[address];
}
void Write(Z80EX_CONTEXT*, Z80EX_WORD address, Z80EX_BYTE value, void* ram) {
    static_cast<Z80EX_BYTE*>(ram)[address] = value;
}
Z80EX_BYTE ReadPort(Z80EX_CONTEXT*, Z80EX_WORD, void*) {
    return 0xFF;
}
void WritePort(Z80EX_CONTEXT*, Z80EX_WORD, Z80EX_BYTE, void*) {}

}  // namespace

Emulator::Emulator()
    : cpu(z80ex_create(Read, memory.data(), Write, memory.data(), ReadPort, nullptr, WritePort,
                       nullptr, /*interrupt vector=*/nullptr, nullptr)) {}

bool Emulator::RunCom(std::string_view image, std::string_view input) {
    pendingInput = input;
    return Run(image, 0x100, 0x100);
}

// The header: FE and three little-endian words, the start, the last and the execution address.
bool Emulator::RunBin(std::string_view image) {
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

std::string Emulator::Memory(std::size_t address, std::size_t count) const {
    return {memory.data() + address, memory.data() + address + count};
}

bool Emulator::Run(std::string_view code, unsigned start, unsigned entry) {
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

void Emulator::CallSystem() {
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

}  // namespace korv_test
