// The memory pools at their limits. Limits that a source can reach are tested by cases/long.txt.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>

#include "codegen/bin_block.h"
#include "source/file_name_registry.h"
#include "symbols/name_index.h"
#include "symbols/patch.h"

namespace korv_test {
namespace {

TEST(BinBlockTest, GrowsInItsStepsAndNotBefore) {
    const std::vector<std::uint8_t> ones(20480, 1);
    const struct {
        std::function<void(korv::BinBlock*)> put;
        unsigned size, position;
    } rows[] = {
        {[](auto* block) { block->PutZeros(4096), block->PutByte(1); }, 8192, 4097},
        {[](auto* block) { block->PutZeros(12289); }, 16384, 12289},
        {[](auto* block) { block->PutZeros(4094), block->PutWord(1); }, 4096, 4096},
        {[](auto* block) { block->PutZeros(4095), block->PutWord(1); }, 20480, 4097},
        {[&](auto* block) { block->PutBytes(std::span(ones).first(4095)); }, 4096, 4095},  // leaves one byte free
        {[&](auto* block) { block->PutBytes(std::span(ones).first(4096)); }, 20480, 4096},
        {[&](auto* block) { block->PutBytes(ones); }, 36864, 20480},
        {[](auto* block) { block->PutByteAt(1, 4095), block->PutWordAt(1, 4094); }, 4096, 0},
        {[](auto* block) { block->PutByteAt(1, 99999), block->PutWordAt(1, 102399); }, 118784, 0},
        {[](auto* block) { block->PutByteAt(1, 4294967295); }, 4096, 0},  // not a position
    };
    for (const auto& [put, size, position] : rows) {
        korv::BinBlock block(4096, stdout);
        put(&block);
        std::FILE* const dump = std::tmpfile();
        EXPECT_EQ(-1, block.DumpStatus(nullptr));
        EXPECT_EQ(0, block.DumpStatus(dump));
        std::rewind(dump);
        unsigned numbers[2] = {};
        EXPECT_EQ(2, std::fscanf(dump, " Block size: %u. Position: %u", &numbers[0], &numbers[1]));
        std::fclose(dump);
        EXPECT_EQ(size, numbers[0]) << position;
        EXPECT_EQ(position, numbers[1]) << size;
    }
}

TEST(FileNameTest, HasAPhraseForANumberThatWasNotGiven) {
    korv::CFileNameRegistry names;
    EXPECT_STREQ("--Error--", names.NameOf(1));
    for (int i = 1; i <= 11; ++i) {
        EXPECT_EQ(i, names.AddName(std::to_string(i)));
    }
    EXPECT_STREQ("11", names.NameOf(11));
    EXPECT_STREQ("--Error--", names.NameOf(12));
    EXPECT_STREQ("--Error--", names.NameOf(-1));
}

TEST(NameIndexTest, TellsShortNamesApartByTheirTail) {  // the texts of short names are not compared
    const std::string text = "\1\2\3\4\5\6\7\10";
    for (std::size_t size = 1; size <= text.size(); ++size) {
        const auto tail = std::bit_cast<std::array<char, 8>>(korv::TailOf(text.data(), size));
        for (std::size_t i = 0; i < size; ++i) {
            EXPECT_TRUE(std::ranges::count(tail, text[i]) != 0) << size << i;
        }
    }
}

TEST(NameIndexTest, FindsEachNameWhereverHashesCrowd) {
    const std::function<std::uint64_t(std::uint64_t)> hashes[] = {
        [](std::uint64_t) { return 7; },                          // all equal
        [](std::uint64_t i) { return i << 32 | (~0U - i % 3); },  // all at the end of the table
        [](std::uint64_t i) { return i / 2; },                    // two at each of consecutive places
        [](std::uint64_t i) { return i * 512; },                  // different places only in a large table
    };
    for (const auto& hashOf : hashes) {
        korv::CNamePool pool(stdout);
        korv::CNameIndex index(&pool);
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

TEST(PatchTest, ABlockHas255PatchesAndTakesFreedOnesBack) {
    std::map<korv::CPatchInfoMemBlock*, std::set<korv::CPatchInfo*>> blocks[2];
    for (auto& patchesOf : blocks) {
        for (int i = 0; i < 3 * 255; ++i) {
            korv::CPatchInfo* const patch = korv::CPatchInfoMemBlock::AllocPatchInfo(0, 0, 0, {});
            EXPECT_TRUE(patchesOf[patch->owner].insert(patch).second);
        }
        int full = 0;
        for (const auto& [block, patches] : patchesOf) {
            EXPECT_LE(patches.size(), 255U);
            full += patches.size() == 255 ? 1 : 0;
        }
        EXPECT_GE(full, 2);  // the first block may already hold other patches
        for (const auto& [block, patches] : patchesOf) {
            std::ranges::for_each(patches, korv::CPatchInfoMemBlock::FreePatchInfo);
        }
    }
    for (const auto& [block, patches] : blocks[1]) {
        EXPECT_TRUE(blocks[0].contains(block));
    }
}

}  // namespace
}  // namespace korv_test
