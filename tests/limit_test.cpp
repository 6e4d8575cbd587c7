// The pools of memory at their limits. What a source can reach is in cases/long.txt.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
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
            const auto& [name, record] = *records.try_emplace("LONGNAME" + std::to_string(i)).first;
            ASSERT_EQ(nullptr, index.Find({name, hashOf(i)}));
            records[name].name = name.c_str();
            records[name].nameLength = static_cast<std::uint32_t>(name.size());
            index.Insert(&records[name], hashOf(i));
        }
        for (std::uint32_t i = 0; i < 3000; ++i) {
            const std::string name = "LONGNAME" + std::to_string(i), other = "M" + name.substr(1);
            ASSERT_EQ(&records[name], index.Find({name, hashOf(i)})) << i;
            ASSERT_EQ(nullptr, index.Find({other, hashOf(i)})) << i;
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
    const int before = Block::BlockCount();
    std::vector<korv::CPatchInfo*> live;
    for (int count = before + 1; count < before + 4; ++count) {
        while (Block::BlockCount() < count) {
            live.push_back(Block::AllocPatchInfo(0, 0, {}));
        }
        EXPECT_EQ((count - 1) * 255 + 1, std::ssize(live));
        EXPECT_EQ(live.size(), std::set(live.begin(), live.end()).size());
        const auto kept = live.begin() + std::min<std::ptrdiff_t>(300, std::ssize(live));
        std::for_each(live.begin(), kept, Block::FreePatchInfo);  // and there is room again
        live.erase(live.begin(), kept);
    }
    std::for_each(live.begin(), live.end(), Block::FreePatchInfo);
}

}  // namespace
}  // namespace korv_test
