// Every example assembles without a message and does on a Z80 what it says. Typed text is not
// echoed.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "emulator.h"
#include "run.h"

namespace korv_test {

namespace {

/// What sieve.kor prints, found by trial division.
std::string Primes() {
    std::string text;
    int count = 0;
    for (int n = 2; n < 1000; ++n) {
        bool isPrime = true;
        for (int divisor = 2; divisor * divisor <= n; ++divisor) {
            isPrime = isPrime && n % divisor != 0;
        }
        if (isPrime) {
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
    std::string output;  // with line feeds where the program writes carriage return and line feed
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

/// The target of one example; `format` is the switch for the kind of target.
std::string Assemble(const std::string& name, const char* format) {
    const TempDir directory;
    const RunResult run = RunKorv({ProjectPath("examples/" + name + ".kor"), "OUT.IMG", format});
    EXPECT_EQ(run.console.find(" X"), std::string::npos) << run.console;  // " : error X16"
    return run.target.value_or("");
}

TEST(ExamplesTest, PrintWhatTheyShould) {
    for (const auto& [name, input, output] : PROGRAMS) {
        SCOPED_TRACE(name);
        Emulator emulator;
        EXPECT_TRUE(emulator.Run(Assemble(name, "/b-"), 0x100, 0x100, input));
        EXPECT_EQ(emulator.output, ReplaceAll(output, "\n", "\r\n"));
    }
    const std::filesystem::directory_iterator files(ProjectPath("examples"));
    const auto isSource = [](const auto& file) { return file.path().extension() == ".kor"; };
    EXPECT_EQ(std::count_if(begin(files), end(files), isSource), std::ssize(PROGRAMS) + 1);
}

TEST(LoaderExampleTest, UnpacksItsBlock) {
    const std::string image = Assemble("loader", "/b");
    ASSERT_EQ("FE 00 80 78 80 05 80", ToHex(image.substr(0, 7)));  // first, last, entry
    ASSERT_EQ(0x79U, image.size() - 7);
    Emulator emulator;
    ASSERT_TRUE(emulator.Run(image.substr(7), 0x8000, 0x8005, ""));
    const std::string memory(emulator.memory.begin(), emulator.memory.end());
    const std::string line(29, '=');
    const std::string block = line + " Korv " + line + std::string(64, ' ') + std::string(64, '=');
    EXPECT_EQ(memory.substr(0xC000, block.size() + 1), block + '\0');
    // Status 0, the CRC (by Python: binascii.crc_hqx(block, 0xFFFF)) and the size.
    EXPECT_EQ(ToHex(memory.substr(0x8000, 5)), "00 C3 97 C0 00");
}

}  // namespace

}  // namespace korv_test
