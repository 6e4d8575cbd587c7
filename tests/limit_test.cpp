// Limits that are too long for a table of cases: buffers at their steps, a million lines.

#include <gtest/gtest.h>

#include <functional>

#include "codegen/bin_block.h"
#include "expr/tmp_string.h"
#include "run.h"
#include "symbols/name_index.h"
#include "symbols/patch.h"

namespace korv_test {
namespace {

// The numbers that `dump` prints.
std::string Numbers(const std::function<int(std::FILE*)>& dump) {
    std::FILE* const stream = std::tmpfile();
    EXPECT_EQ(-1, dump(nullptr));
    EXPECT_EQ(0, dump(stream));
    std::rewind(stream);
    std::string numbers;
    int number = 0;
    while (std::fscanf(stream, "%*[^0-9]%d", &number) == 1) {
        numbers += (numbers.empty() ? "" : " ") + std::to_string(number);
    }
    std::fclose(stream);
    return numbers;
}

// clang-format off
TEST(BinBlockTest, GrowsInItsStepsAndNotBefore) {
    using Block = korv::BinBlock;
    static const std::vector<std::uint8_t> bytes(20480);
    const auto put = [](Block& b, std::size_t n) { b.PutBytes(std::span(bytes).first(n)); };
    const std::pair<std::function<void(Block&)>, std::string> rows[] = {
        {[](Block& b) { b.PutZeros(4096); }, "4096 4096"},
        {[](Block& b) { b.PutZeros(4096), b.PutByte(1); }, "8192 4097"},
        {[](Block& b) { b.PutZeros(12288); }, "12288 12288"},
        {[](Block& b) { b.PutZeros(12289); }, "16384 12289"},
        {[](Block& b) { b.PutZeros(4094), b.PutWord(1); }, "4096 4096"},
        {[](Block& b) { b.PutZeros(4095), b.PutWord(1); }, "20480 4097"},
        {[&](Block& b) { put(b, 4095); }, "4096 4095"},  // one byte is kept to spare
        {[&](Block& b) { put(b, 4096); }, "20480 4096"},
        {[&](Block& b) { put(b, 20480); }, "36864 20480"},
        {[](Block& b) { b.PutByteAt(1, 99999), b.PutWordAt(1, 200000); }, "200704 0"},
        {[](Block& b) { b.PutByteAt(1, 4095), b.PutWordAt(1, 4094); }, "4096 0"},
        {[](Block& b) { b.PutByteAt(1, 4096); }, "8192 0"},
        {[](Block& b) { b.PutWordAt(1, 4095); }, "20480 0"},
        {[](Block& b) { EXPECT_EQ(~0U, b.PutByteAt(1, ~0U)); }, "4096 0"},
    };
    for (const auto& [work, expected] : rows) {
        Block block(4096, stdout);
        work(block);
        EXPECT_EQ(expected, Numbers([&](std::FILE* to) { return block.DumpStatus(to); }));
    }
}

TEST(NameIndexTest, FindsEachNameWhereverHashesCrowd) {
    const std::function<std::uint64_t(std::uint64_t)> hashes[] = {
        [](std::uint64_t) { return 7; },                           // no two differ
        [](std::uint64_t i) { return i << 32; },                   // all belong to one place
        [](std::uint64_t i) { return i << 32 | (~0U - i % 3); },   // all at the end
        [](std::uint64_t i) { return i / 2; },                     // two to a place, in a row
        [](std::uint64_t i) { return i * 512; },                   // apart in a large table only
    };
    for (const auto& hashOf : hashes) {
        constexpr std::uint32_t count = 3000;
        korv::CNameIndex index;
        std::vector<std::string> texts(2 * count);
        std::vector<korv::CIdentifier> records(count);
        const auto find = [&](std::uint32_t i) {
            texts[i] = "N" + std::to_string(i);
            return index.Find({texts[i], hashOf(i)});
        };
        for (std::uint32_t i = 0; i < count; ++i) {
            ASSERT_EQ(nullptr, find(i));
            records[i].name = texts[i].c_str();
            records[i].nameLength = static_cast<std::uint32_t>(texts[i].size());
            index.Insert(&records[i], hashOf(i));
            ASSERT_EQ(&records[i / 2], find(i / 2)) << i;
        }
        for (std::uint32_t i = 0; i < 2 * count; ++i) {
            ASSERT_EQ(i < count ? &records[i] : nullptr, find(i)) << i;
        }
    }
}

TEST(TmpStringTest, ABlockGoesWhenItIsFullAndUnused) {
    const auto status = [] { return Numbers(korv::CtmpStringManager::DumpStatus); };
    const std::string full(16383, 'x');  // and its terminator
    korv::CtmpString first(full);
    EXPECT_EQ("1 16384 1 0", status());  // blocks; size, references and full mark of each
    korv::CtmpString shared(first);
    const korv::CtmpString second("");
    EXPECT_EQ("2 16384 1 0 16384 2 1", status());
    first.Release();
    EXPECT_EQ(full, shared.View());
    shared.Release();
    EXPECT_EQ("1 16384 1 0", status());
    korv::CtmpString longer(full + "yz");
    EXPECT_EQ("2 16386 1 1 16384 1 1", status());
    EXPECT_EQ(full + "yz", longer.c_str());
    longer.Release();
    EXPECT_EQ("1 16384 1 1", status());
}

// Both of these leave blocks of patches in the process, so they have one of their own.
void FillPatchBlocks() {
    using Block = korv::CPatchInfoMemBlock;
    std::vector<korv::CPatchInfo*> live;
    const auto add = [&live] {
        live.push_back(Block::AllocPatchInfo(0, {}, 0, {}, {}));
        return live.back()->slot;
    };
    const int before = Block::BlockCount();
    while (Block::BlockCount() == before) {
        add();
    }
    EXPECT_EQ(before * 255 + 1, std::ssize(live));
    for (std::uint32_t slot = 1; slot < 255; ++slot) {
        EXPECT_EQ(slot, add());
    }
    for (const std::uint32_t slot : {255U, 7U}) {  // the one left over, then the one given back
        Block::FreePatchInfo(std::exchange(live.end()[-248], live.back()));
        live.pop_back();
        EXPECT_EQ(slot, add());
    }
    EXPECT_EQ(before + 1, Block::BlockCount());
    add();
    EXPECT_EQ(before + 2, Block::BlockCount());
    std::exit(testing::Test::HasFailure());
}

TEST(PatchTest, ABlockHas255LivePatches) {
    EXPECT_EXIT(FillPatchBlocks(), testing::ExitedWithCode(0), "");
}

std::string Repeated(int count, const std::function<std::string(std::string)>& line) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += line(std::to_string(i));
    }
    return text;
}

TEST(LimitTest, LongSources) {
    using Text = std::string;
    const auto word = [](int n) { return Text{static_cast<char>(n), static_cast<char>(n >> 8)}; };
    const auto ifs = [](Text) { return " IF 1\n"; };
    const auto endifs = [](Text) { return " ENDIF\n"; };
    const struct {
        Text source, argument, message, image;  // a message or an image
    } rows[] = {
        {Repeated(32, ifs) + " DB 7\n" + Repeated(32, endifs), "/m-", "", "\7"},
        {Repeated(33, ifs), "/m-", "Main.Kor(33) : error X36 : ", ""},
        {Repeated(33, ifs) + Repeated(33, endifs), "/m-", "Main.Kor(66) : error X34 : ", ""},
        {"\n\n@", "/linelen:1", "Main.Kor(3) : warning X57 : ", ""},
        {"\n\n@\n", "/linelen:1", "Main.Kor(3) : error X41 : ", ""},
        {" DB 7\n", "/linelen:2147483647", "", "\7"},
        {" DW E0\n" + Repeated(100000, [](const Text& i) { return "E" + i + ": EQU E" + std::to_string(std::stoi(i) + 1) + "+1\n"; }) +
             "E100000: EQU -33000*3\n", "/m-", "", word(1000)},
        {" DB 1" + Repeated(99998, [](Text) { return ",1"; }) + ",9\n", "/linelen:200007", "", Text(99999, '\1') + '\t'},
        {Repeated(1000000, [](Text) { return " DW FWD\n"; }) + "FWD: EQU $1234\n", "/m-", "", Repeated(1000000, [&](Text) { return word(0x1234); })},
        {Repeated(1000000, [](const Text& i) { return "L" + i + ":" + (i.ends_with("000") ? " DW L" + i : "") + "\n"; }) + " DW L1500\n",
             "/m-", "", Repeated(999, [&](const Text& i) { return word(256 + 2 * std::stoi(i)); }) + word(258)},
    };
    for (const auto& row : rows) {
        const TempDir directory;
        WriteFile("Main.Kor", row.source);
        const auto check = [&row] {
            const RunResult result = RunKorv({"Main.Kor", row.argument});
            const Text message = row.message.empty() ? " X" : row.message;
            EXPECT_EQ(row.message.empty(), result.console.find(message) == Text::npos) << result.console;
            EXPECT_TRUE(!row.message.empty() || result.target == row.image) << result.console;
            std::exit(HasFailure());
        };
        EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
    }
}

}  // namespace
}  // namespace korv_test
