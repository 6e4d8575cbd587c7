// Every example must assemble without a message and do what it should on an emulated Z80.

#include <gtest/gtest.h>
#include <z80ex/z80ex.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "run.h"

namespace korv_test {
namespace {

// A Z80 with 64 KiB of RAM, and the CP/M calls that a console program needs: 0 (end), 1 (read a key), 2 (print a
// character), 9 (print text up to "$") and 10 (read a line). Input is not echoed, so `output` is only the text that the
// program prints. At the end of the input, a key is 1AH and a line is empty.
struct Emulator {
    static constexpr unsigned systemEntry = 5;
    static constexpr unsigned stackTop = 0xFF00;  // the word at this address is 0, the return address
    std::string memory = std::string(0x10000, '\0');
    std::string output;
    std::string_view input;  // the input not read yet; lines end with a line feed
    std::unique_ptr<Z80EX_CONTEXT, decltype(&z80ex_destroy)> cpu = {
        z80ex_create(
            [](auto*, Z80EX_WORD at, int, void* ram) { return static_cast<Z80EX_BYTE*>(ram)[at]; }, memory.data(),
            [](auto*, Z80EX_WORD at, Z80EX_BYTE value, void* ram) { static_cast<Z80EX_BYTE*>(ram)[at] = value; },
            memory.data(), [](auto*, Z80EX_WORD, void*) -> Z80EX_BYTE { return 0xFF; }, nullptr,
            [](auto*, Z80EX_WORD, Z80EX_BYTE, void*) {}, nullptr, nullptr, nullptr),
        z80ex_destroy};

    // Result: false if the program has not returned to address 0 after more steps than any test needs.
    bool Run(const std::string& code, unsigned start, unsigned entry) {
        memory.replace(start, code.size(), code).resize(0x10000);
        memory[systemEntry] = '\xC9';
        z80ex_set_reg(cpu.get(), regSP, stackTop);
        z80ex_set_reg(cpu.get(), regPC, static_cast<Z80EX_WORD>(entry));
        for (int step = 0; step < 5'000'000 && z80ex_get_reg(cpu.get(), regPC) != 0; ++step) {
            if (z80ex_get_reg(cpu.get(), regPC) == systemEntry) {
                CallSystem();  // the RET at that address returns to the program
            }
            z80ex_step(cpu.get());
        }
        return z80ex_get_reg(cpu.get(), regPC) == 0;
    }

    void CallSystem() {
        const unsigned call = z80ex_get_reg(cpu.get(), regBC) & 0xFFU;
        const std::size_t argument = z80ex_get_reg(cpu.get(), regDE);
        for (const Z80_REG_T reg : {regAF, regBC, regDE, regHL}) {
            z80ex_set_reg(cpu.get(), reg, 0xA5A5);  // a program must not rely on registers after a call
        }
        std::size_t used = 0;
        if (call == 0) {
            z80ex_set_reg(cpu.get(), regSP, stackTop);  // so the RET ends the program
        } else if (call == 1) {
            const unsigned key = input.empty() ? 0x1AU : static_cast<Z80EX_BYTE>(input[0]);
            z80ex_set_reg(cpu.get(), regAF, static_cast<Z80EX_WORD>(key << 8));
            used = 1;
        } else if (call == 2) {
            output += static_cast<char>(argument);
        } else if (call == 9) {
            output += memory.substr(argument, memory.find('$', argument) - argument);
        } else if (call == 10) {
            const std::string_view line = input.substr(0, input.find('\n'));
            const std::string taken(line.substr(0, static_cast<Z80EX_BYTE>(memory[argument])));
            memory[argument + 1] = static_cast<char>(taken.size());
            memory.replace(argument + 2, taken.size(), taken);
            used = line.size() + 1;
        }
        input.remove_prefix(std::min(used, input.size()));
    }
};

/// The text that sieve.kor prints.
std::string Primes() {
    std::string text;
    int count = 0;
    for (int n = 2, divisor; n < 1000; ++n) {
        for (divisor = 2; n % divisor != 0; ++divisor) {
        }
        if (divisor == n) {
            text += (count++ % 10 == 0 ? "\n" : " ") + std::to_string(n);
        }
    }
    return text.substr(1) + "\n" + std::to_string(count) + " primes below 1000\n";
}

const std::string GUESS = "Your guess? \n";
const std::string GAME = "I think of a number from 1 to 100.\n" + GUESS;
const std::string NO_NUMBER = "That is no number.\n" + GUESS;

struct Program {
    const char* name;
    const char* input;
    std::string output;  // with a line feed for each CR LF that the program prints
};

// clang-format off
const Program PROGRAMS[] = {
    {"hello", "", "Hello, world!\n"},
    {"sieve", "", Primes()},
    {"sort", "pear\nfig\nPlum\n$1, fig\nfigs\nfig\n\n",
        "\n\n\n\n\n\n\n$1, fig\nPlum\nfig\nfig\nfigs\npear\n"},
    {"guess", "Ada\n50\n97\n256\n9x\n94\ny89\nYes\n",
        "Who are you? \n" + GAME + "Too low.\n" + GUESS + "Too high.\n" + GUESS + NO_NUMBER +
        NO_NUMBER + "Right! You took 3 guesses.\nOnce more (Y/N)? \n" + GAME +
        "Right! You took 1 guess.\nOnce more (Y/N)? \n" + GAME + NO_NUMBER + "It was 64.\n"},
    {"dump", "e 8000 4b 6F 72 76 100\nD 8000\nf 8021 1E ff\nd\nE 8000 X\nz\n?\nq\nz\n", ">\n>\n"
        "8000 4B 6F 72 76 00 00 00 00 00 00 00 00 00 00 00 00 Korv............\n"
        "8010 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 ................\n>\n>\n"
        "8020 00 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF ................\n"
        "8030 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF 00 ................\n"
        ">\nWhat?\n>\nWhat?\n>\n"
        "D [address]\nE address byte ...\nF address count byte\nQ\n>\n"},
};
// clang-format on

/// The image of an example; the switch `format` selects the kind of image.
std::string Assemble(const std::string& name, const char* format) {
    const TempDir directory;
    const std::string console = RunKorv({ProjectPath("examples/" + name + ".kor"), "OUT.IMG", format});
    EXPECT_FALSE(Contains(console, " X")) << console;  // as in " : error X16"
    return ReadFile("OUT.IMG").value_or("");
}

TEST(ExamplesTest, PrintWhatTheyShould) {
    for (const auto& [name, input, output] : PROGRAMS) {
        SCOPED_TRACE(name);
        Emulator emulator;
        emulator.input = input;
        EXPECT_TRUE(emulator.Run(Assemble(name, "/b-"), 0x100, 0x100));
        EXPECT_EQ(emulator.output, ReplaceAll(output, "\n", "\r\n"));
    }
    const std::filesystem::directory_iterator files(ProjectPath("examples"));
    const auto isSource = [](const auto& file) { return file.path().extension() == ".kor"; };
    EXPECT_EQ(std::count_if(begin(files), end(files), isSource), std::ssize(PROGRAMS) + 1);
}

TEST(LoaderExampleTest, UnpacksItsBlock) {
    const std::string image = Assemble("loader", "/b");
    ASSERT_EQ("FE008078800580", ToHex(image.substr(0, 7)));  // first, last, entry
    ASSERT_EQ(0x79U, image.size() - 7);
    Emulator emulator;
    ASSERT_TRUE(emulator.Run(image.substr(7), 0x8000, 0x8005));
    const std::string line(29, '=');
    const std::string block = line + " Korv " + line + std::string(64, ' ') + std::string(64, '=');
    EXPECT_EQ(emulator.memory.substr(0xC000, block.size() + 1), block + '\0');
    // Status 0, the CRC (calculated with Python's binascii.crc_hqx(block, 0xFFFF)) and the size.
    EXPECT_EQ(ToHex(emulator.memory.substr(0x8000, 5)), "00C397C000");
}

}  // namespace
}  // namespace korv_test
