#include <algorithm>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc::testing;

// Of the 24-bit word of mode 0, and of mode 1's byte with its six further bits above it.
constexpr int field_low[2][4] = {{0, 6, 11, 18}, {0, 8, 4, 11}};
constexpr int field_size[2][4] = {{64, 32, 128, 32}, {16, 8, 16, 8}};

// Four planes behind each other.
struct Nodes {
    Guarded<int16_t> values;
    int count;

    explicit Nodes(size_t n, Against side = Against::back)
        : values(4 * n, side), count(static_cast<int>(n)) {}
    int at(size_t k, size_t i) { return values[k * static_cast<size_t>(count) + i]; }
    void apply(decltype(store_data) function, Guarded<uint8_t>& stream, uint8_t mode) {
        int16_t* const p = values.data();
        EXPECT_EQ(function(stream.data(), p, p + count, p + 2 * count, p + 3 * count, 1, count, mode), 0);
    }
};

// Loads `stream`, expects the fields of words[i] at node i, stores them and expects the same stream.
void expect_words(Guarded<uint8_t>& stream, const std::vector<uint32_t>& words, uint8_t mode) {
    Nodes nodes(words.size());
    nodes.apply(load_data, stream, mode);
    for (size_t k = 0; k < 4; ++k)
        for (size_t i = 0; i < words.size(); ++i) {
            const int size = field_size[mode][k];
            const int bits = static_cast<int>(words[i] >> field_low[mode][k]) % size;
            ASSERT_EQ(nodes.at(k, i), bits < size / 2 ? bits : bits - size) << words[i] << " role " << k;
        }
    const std::vector<uint8_t> expected = stream.copy();
    nodes.apply(store_data, stream, mode);
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
    node.apply(load_data, stream, 0);
    node.apply(store_data, stream, 0);
    EXPECT_EQ(stream.copy(), std::vector<uint8_t>(3, 0));
}

TEST(Pack, EveryValueSaturatesToItsField) {
    for (const uint8_t mode : {uint8_t{0}, uint8_t{1}}) {
        Nodes nodes(65536), back(65536);
        for (size_t i = 0; i < 4 * 65536; ++i)
            nodes.values[i] = static_cast<int16_t>(i + (i >> 16) * 0x5A5A); // another order for each role
        Guarded<uint8_t> stream(3 * 65536);
        nodes.apply(store_data, stream, mode);
        back.apply(load_data, stream, mode);
        for (size_t i = 0; i < 4 * 65536; ++i) {
            const int limit = field_size[mode][i >> 16] / 2;
            ASSERT_EQ(back.values[i], std::clamp<int>(nodes.values[i], -limit, limit - 1));
        }
    }
}

TEST(Pack, UnstoredTailAndUnknownModesAreNeitherWrittenNorRead) {
    for (size_t count = 0; count < 80; ++count) {
        const Against side = count % 3 ? Against::front : Against::back;
        Nodes nodes(count, side);
        Guarded<uint8_t> stream(count / 4 * 7, side);
        std::fill(nodes.values.begin(), nodes.values.end(), int16_t{100});
        for (const uint8_t mode : {uint8_t{2}, uint8_t{255}, uint8_t{1}}) {
            nodes.apply(store_data, stream, mode);
            nodes.apply(load_data, stream, mode);
        }
        for (size_t n = 0; n < 4 * count; ++n)
            ASSERT_EQ(nodes.at(n % 4, n / 4), n / 4 >= count / 4 * 4 ? 100 : field_size[1][n % 4] / 2 - 1);
        EXPECT_TRUE(stream.intact() && nodes.values.intact());
    }
}

TEST(Pack, EmptySizesTouchNothing) {
    Guarded<uint8_t> empty(0);
    for (const int size : {0, -4, INT32_MIN})
        for (const uint8_t mode : {uint8_t{0}, uint8_t{1}}) {
            EXPECT_EQ(store_data(empty.data(), nullptr, nullptr, nullptr, nullptr, size, -4, mode), 0);
            EXPECT_EQ(load_data(empty.data(), nullptr, nullptr, nullptr, nullptr, 4, size, mode), 0);
        }
}

} // namespace
