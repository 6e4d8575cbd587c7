// The pools of memory at their limits. What a source can reach is in cases/long.txt.

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "codegen/bin_block.h"
#include "expr/tmp_string.h"
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

TEST(BinBlockTest, GrowsInItsStepsAndNotBefore) {
    static const std::vector<std::uint8_t> bytes(20480);
    const std::pair<std::string, std::string> rows[] = {
        // what is put; then size and position
        {"zeros 4096", "4096 4096"},
        {"zeros 4096 byte 1", "8192 4097"},
        {"zeros 12288", "12288 12288"},
        {"zeros 12289", "16384 12289"},
        {"zeros 4094 word 1", "4096 4096"},
        {"zeros 4095 word 1", "20480 4097"},
        {"bytes 4095", "4096 4095"},  // one byte is kept to spare
        {"bytes 4096", "20480 4096"},
        {"bytes 20480", "36864 20480"},
        {"byteAt 4095 wordAt 4094", "4096 0"},
        {"byteAt 99999 wordAt 200000", "200704 0"},
        {"byteAt 4096", "8192 0"},
        {"wordAt 4095", "20480 0"},
        {"byteAt 4294967295", "4096 0"},  // no position
    };
    for (const auto& [work, expected] : rows) {
        korv::BinBlock block(4096, stdout);
        std::istringstream words(work);
        std::uint32_t n = 0;
        for (std::string word; words >> word >> n;) {
            const std::uint32_t position = block.Position();
            const std::uint32_t result = word == "zeros"  ? block.PutZeros(n)
                                         : word == "byte" ? block.PutByte(1)
                                         : word == "word" ? block.PutWord(1)
                                         : word == "bytes"
                                             ? block.PutBytes(std::span(bytes).first(n))
                                         : word == "byteAt" ? block.PutByteAt(1, n)
                                                            : block.PutWordAt(1, n);
            EXPECT_EQ(word.ends_with("At") ? n : position, result) << work;
        }
        EXPECT_EQ(expected, Numbers([&](std::FILE* to) { return block.DumpStatus(to); })) << work;
    }
}

TEST(NameIndexTest, FindsEachNameWhereverHashesCrowd) {
    const std::function<std::uint64_t(std::uint64_t)> hashes[] = {
        [](std::uint64_t) { return 7; },                          // no two differ
        [](std::uint64_t i) { return i << 32; },                  // all belong to one place
        [](std::uint64_t i) { return i << 32 | (~0U - i % 3); },  // all at the end
        [](std::uint64_t i) { return i / 2; },                    // two to a place, in a row
        [](std::uint64_t i) { return i * 512; },                  // apart in a large table only
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
    // The number of blocks; of each, the newest first, size, references and full mark.
    const auto status = [] { return Numbers(korv::CtmpStringManager::DumpStatus); };
    const std::string full(16383, 'x');  // and its terminator
    korv::CtmpString first(full);
    EXPECT_EQ("1 16384 1 0", status());
    korv::CtmpString shared(first);
    korv::CtmpString second("");
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
    korv::CtmpString(full).Release();
    EXPECT_EQ("2 16384 0 0 16384 1 1", status());  // not known to be full
    second.Release();
    korv::CtmpStringManager::ReleaseAll();
}

TEST(PatchTest, ABlockHas255LivePatches) {
    using Block = korv::CPatchInfoMemBlock;
    std::vector<korv::CPatchInfo*> live;
    const auto add = [&live] {
        live.push_back(Block::AllocPatchInfo(0, 0, {}));
        return live.back()->slot;
    };
    const auto giveBack = [&live](std::uint32_t slot) {
        const auto patch =
            std::find_if(live.rbegin(), live.rend(), [slot](auto* p) { return p->slot == slot; });
        Block::FreePatchInfo(std::exchange(*patch, live.back()));
        live.pop_back();
    };
    const int before = Block::BlockCount();
    while (Block::BlockCount() == before) {
        add();
    }
    EXPECT_EQ(before * 255 + 1, std::ssize(live));
    for (std::uint32_t slot = 1; slot < 255; ++slot) {
        EXPECT_EQ(slot, add());
    }
    giveBack(7);
    EXPECT_EQ(255U, add());  // the one left over comes first
    giveBack(9);
    EXPECT_EQ(7U, add());
    EXPECT_EQ(before + 1, Block::BlockCount());
    add();
    EXPECT_EQ(before + 2, Block::BlockCount());
    std::for_each(live.begin(), live.end(), Block::FreePatchInfo);
}

}  // namespace
}  // namespace korv_test
