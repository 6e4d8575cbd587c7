// The pools of memory at their limits. What a source can reach is in cases/long.txt.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <sstream>

#include "codegen/bin_block.h"
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
    for (int number = 0; std::fscanf(stream, "%*[^0-9]%d", &number) == 1;) {
        numbers += (numbers.empty() ? "" : " ") + std::to_string(number);
    }
    std::fclose(stream);
    return numbers;
}

TEST(BinBlockTest, GrowsInItsStepsAndNotBefore) {
    const std::vector<std::uint8_t> ones(20480, 1);
    const std::map<std::string, std::string> rows = {
        // what is put, at a place or behind the last; then size and position
        {"zeros 4096 byte 1", "8192 4097"},
        {"zeros 12289", "16384 12289"},
        {"zeros 4094 word 1", "4096 4096"},
        {"zeros 4095 word 1", "20480 4097"},
        {"ones 4095", "4096 4095"},  // one byte is kept to spare
        {"ones 20480", "36864 20480"},
        {"byteAt 4095 wordAt 4094", "4096 0"},
        {"byteAt 99999 wordAt 102399", "118784 0"},
        {"byteAt 4294967295", "4096 0"},  // no position
    };
    for (const auto& [work, expected] : rows) {
        korv::BinBlock block(4096, stdout);
        std::istringstream words(work);
        std::uint32_t n = 0;
        for (std::string word; words >> word >> n;) {
            word == "zeros"    ? block.PutZeros(n)
            : word == "byte"   ? block.PutByte(1)
            : word == "word"   ? block.PutWord(1)
            : word == "ones"   ? block.PutBytes(std::span(ones).first(n))
            : word == "byteAt" ? block.PutByteAt(1, n)
                               : block.PutWordAt(1, n);
        }
        EXPECT_EQ(expected, Numbers([&](std::FILE* to) { return block.DumpStatus(to); })) << work;
    }
}

TEST(NameIndexTest, FindsEachNameWhereverHashesCrowd) {
    const std::function<std::uint64_t(std::uint64_t)> hashes[] = {
        [](std::uint64_t) { return 7; },                          // no two differ
        [](std::uint64_t i) { return i << 32 | (~0U - i % 3); },  // all at the end
        [](std::uint64_t i) { return i / 2; },                    // two to a place, in a row
        [](std::uint64_t i) { return i * 512; },                  // apart in a large table only
    };
    for (const auto& hashOf : hashes) {
        korv::CNameIndex index;
        std::map<std::string, korv::CIdentifier> records;
        for (std::uint32_t i = 0; i < 3000; ++i) {
            const auto& [name, record] = *records.try_emplace("N" + std::to_string(i)).first;
            ASSERT_EQ(nullptr, index.Find({name, hashOf(i)}));
            records[name].name = name.c_str();
            records[name].nameLength = static_cast<std::uint32_t>(name.size());
            index.Insert(&records[name], hashOf(i));
        }
        for (std::uint32_t i = 0; i < 3000; ++i) {
            const std::string name = "N" + std::to_string(i), other = "M" + name.substr(1);
            ASSERT_EQ(&records[name], index.Find({name, hashOf(i)})) << i;
            ASSERT_EQ(nullptr, index.Find({other, hashOf(i)})) << i;
        }
    }
}

TEST(PatchTest, ABlockHas255PatchesAndTakesFreedOnesBack) {
    using Block = korv::CPatchInfoMemBlock;
    const int before = Block::BlockCount();
    std::vector<korv::CPatchInfo*> live;
    const auto usedUpTo = [&](int count) {
        while (Block::BlockCount() < count) {
            live.push_back(Block::AllocPatchInfo(0, 0, {}));
        }
        EXPECT_EQ(live.size(), std::set(live.begin(), live.end()).size());
        return live.size();
    };
    const std::size_t first = usedUpTo(before + 1);
    EXPECT_EQ(first + 255, usedUpTo(before + 2));
    std::for_each(live.begin(), live.end(), Block::FreePatchInfo);
    live.clear();
    EXPECT_EQ(first + 2 * 255, usedUpTo(before + 3));
    std::for_each(live.begin(), live.end(), Block::FreePatchInfo);
}

}  // namespace
}  // namespace korv_test
