#include <algorithm>
#include <memory>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc::testing;

// Of the 24-bit word of mode 0, and of mode 1's byte with its six further bits above it.
constexpr int field_low[2][4] = {{0, 6, 11, 18}, {0, 8, 4, 11}};
constexpr int field_size[2][4] = {{64, 32, 128, 32}, {16, 8, 16, 8}};

// Four planes of `count` nodes between guard pages, with the way into and out of a stream.
struct Nodes {
    std::unique_ptr<Guarded<int16_t>> plane[4];
    int count;

    explicit Nodes(size_t n, Against side = Against::back) : count(static_cast<int>(n)) {
        for (auto& p : plane)
            p = std::make_unique<Guarded<int16_t>>(n, side);
    }
    int at(size_t k, size_t i) { return (*plane[k])[i]; }
    void store(Guarded<uint8_t>& stream, uint8_t mode) {
        store_data(stream.data(), plane[0]->data(), plane[1]->data(), plane[2]->data(), plane[3]->data(), 1,
                   count, mode);
    }
    void load(Guarded<uint8_t>& stream, uint8_t mode) {
        load_data(stream.data(), plane[0]->data(), plane[1]->data(), plane[2]->data(), plane[3]->data(),
                  count, 1, mode);
    }
};

// Loads `stream`, expects the fields of words[i] at node i, stores them and expects the same stream.
void expect_words(Guarded<uint8_t>& stream, const std::vector<uint32_t>& words, uint8_t mode) {
    Nodes nodes(words.size());
    nodes.load(stream, mode);
    for (size_t k = 0; k < 4; ++k)
        for (size_t i = 0; i < words.size(); ++i) {
            const int size = field_size[mode][k],
                      bits = static_cast<int>(words[i] >> field_low[mode][k]) % size;
            ASSERT_EQ(nodes.at(k, i), bits < size / 2 ? bits : bits - size) << words[i] << " role " << k;
        }
    const std::vector<uint8_t> expected = stream.copy();
    nodes.store(stream, mode);
    ASSERT_TRUE(stream.copy() == expected);
}

TEST(Pack, EveryWordOf24BitsIsReadAndWrittenBack) {
    constexpr uint32_t chunk = 1u << 17;
    for (uint32_t first = 0; first < 1u << 23 && !HasFatalFailure(); first += chunk) {
        std::vector<uint32_t> words(chunk);
        Guarded<uint8_t> stream(3 * chunk);
        for (uint32_t i = 0; i < 3 * chunk; ++i) {
            words[i / 3] = first + i / 3;
            stream[i] = static_cast<uint8_t>(words[i / 3] >> (i % 3 * 8));
        }
        expect_words(stream, words, 0);
    }
}

TEST(Pack, EveryWordOf14BitsIsReadAndWrittenBackAtEachPlaceInItsGroup) {
    std::vector<uint32_t> words(4 * 4 << 14, 0x1555);
    for (size_t i = 0; i < words.size(); i += 4)
        words[i + i / 4 % 4] = static_cast<uint32_t>(i / 16);
    Guarded<uint8_t> stream(words.size() / 4 * 7);
    for (size_t i = 0; i < stream.size(); ++i) {
        const uint32_t* const group = &words[i / 7 * 4];
        const size_t place = i % 7;
        const uint32_t high = place < 4 ? 0 : group[place - 4] >> 8 | (group[3] >> (2 * place) & 3) << 6;
        stream[i] = static_cast<uint8_t>(place < 4 ? group[place] : high);
    }
    expect_words(stream, words, 1);
}

TEST(Pack, Bit23IsIgnoredAndWrittenAsZero) {
    Guarded<uint8_t> stream({0, 0, 0x80}, Against::back);
    Nodes node(1);
    node.load(stream, 0);
    EXPECT_EQ(node.at(3, 0), 0);
    node.store(stream, 0);
    EXPECT_EQ(stream[2], 0);
}

TEST(Pack, EveryValueSaturatesToItsField) {
    for (const uint8_t mode : {uint8_t{0}, uint8_t{1}})
        for (size_t k = 0; k < 4; ++k) {
            Nodes nodes(65536), back(65536);
            for (size_t i = 0; i < 4 * 65536; ++i)
                (*nodes.plane[i % 4])[i / 4] = static_cast<int16_t>(i % 4 == k ? i / 4 : i % 2);
            Guarded<uint8_t> stream(3 * 65536);
            nodes.store(stream, mode);
            back.load(stream, mode);
            for (size_t i = 0; i < 4 * 65536; ++i) {
                const int limit = field_size[mode][i % 4] / 2;
                ASSERT_EQ(back.at(i % 4, i / 4), std::clamp(nodes.at(i % 4, i / 4), -limit, limit - 1));
            }
        }
}

TEST(Pack, UnstoredTailIsNeitherWrittenNorRead) {
    for (size_t i = 0; i < 160; ++i) {
        const size_t count = i / 2, stored = count / 4 * 4;
        const Against side = i % 2 ? Against::front : Against::back;
        Nodes nodes(count, side);
        Guarded<uint8_t> stream(stored / 4 * 7, side);
        for (auto& plane : nodes.plane)
            std::fill(plane->begin(), plane->end(), int16_t{100});
        nodes.store(stream, 1);
        nodes.load(stream, 1);
        EXPECT_TRUE(stream.intact());
        for (size_t n = 0; n < 4 * count; ++n)
            ASSERT_EQ(nodes.at(n % 4, n / 4), n / 4 >= stored ? 100 : field_size[1][n % 4] / 2 - 1) << count;
    }
}

TEST(Pack, UnknownModesAndEmptySizesTouchNothing) {
    Guarded<uint8_t> stream(0);
    Nodes nodes(0);
    for (const int count : {0, -4, INT32_MIN, 16}) {
        nodes.count = count;
        for (const uint8_t mode : {uint8_t{255}, uint8_t{2}, uint8_t{1}, uint8_t{0}})
            if (count < 1 || mode > 1) {
                nodes.store(stream, mode);
                nodes.load(stream, mode);
            }
    }
}

} // namespace
