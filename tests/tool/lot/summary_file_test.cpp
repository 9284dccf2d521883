// A lot's summary with one number of it changed, under a checksum that is right.
#include "lot/summary_file.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include "failure.h"

namespace zerklsc::tool {
namespace {

// Frames of 64 x 48 with a step of 16 have tables of 5 x 5 nodes.
ResultLine module_of(int i) {
    ResultLine result;
    result.serial = "A" + std::to_string(7 + i);
    result.settings = "0123456789abcdef";
    result.verdict = i == 2 ? ModuleVerdict::fail : i == 1 ? ModuleVerdict::warn : ModuleVerdict::pass;
    result.frame = {64, 48, 10, BayerPattern::grbg, {64, 65, 66, 67 + i}};
    result.grid = {4, 16, 5, 5, 3, 90};
    result.checks = {{"exposure", "Gr", 0.5 * i, Verdict::pass}, {"dust", "", std::nullopt, Verdict::warn}};
    result.numbers.flatness = {0.5, 0.25, 0.125 * i, 1e-7};
    result.optical_centre = {{{0.5, 0.25}, {0.51, 0.52}, {0.1 * i, 1}, {0, 0.3}}};
    result.gains.emplace();
    for (auto& plane : *result.gains)
        for (int node = 0; node < 25; ++node)
            plane.push_back(static_cast<uint16_t>(1024 + 100 * i + node));
    return result;
}

// Three modules, the last of which failed.
LotSummary three_modules() {
    LotSummary lot;
    for (int i = 0; i < 3; ++i)
        lot.add(module_of(i), "line");
    return lot;
}

std::string with_checksum(std::string bytes) {
    const auto sum = crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size()));
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(sum >> shift);
    return bytes;
}

// Whether it was read, and then is one that a lot can have, to its last number.
bool reads_soundly(const std::string& bytes) {
    try {
        LotSummary lot = decode_summary(bytes, "changed");
        EXPECT_EQ(lot.modules(), lot.serials.size());
        EXPECT_LE(lot.with_gains(), lot.modules());
        EXPECT_LE(lot.centre_sums.modules, lot.modules());
        for (const auto& plane : lot.gains.counts()) {
            EXPECT_TRUE(plane.empty() || plane.size() == 25);
            for (const ValueCounts& node : plane)
                EXPECT_EQ(node.total(), lot.with_gains());
        }
        for (const auto& [number, block] : lot.sequence.blocks())
            EXPECT_TRUE(block.good <= block.modules && block.modules <= lot.modules()) << number;
        const std::string again = encode_summary(lot);
        lot.add(LotSummary(), "nothing");
        EXPECT_EQ(encode_summary(decode_summary(again, "again")), again);
        return true;
    } catch (const Failure& failure) {
        EXPECT_NE(std::string(failure.what()).find("changed: "), std::string::npos) << failure.what();
        return false;
    }
}

TEST(SummaryFile, WithAnyNumberChangedIsRefusedOrSound) {
    const std::string whole = encode_summary(three_modules());
    const std::string body = whole.substr(0, whole.size() - 4);
    ASSERT_EQ(with_checksum(body), whole);
    ASSERT_TRUE(reads_soundly(whole));
    std::vector<std::string> numbers = {"", "\1", "\2", "\3", "\x7f", "\x80", "\xff"};
    for (const char* last : {"", "\1", "\2", "\xff\xff"})
        numbers.push_back(std::string(9, '\xff') + last);
    numbers.insert(numbers.end(), {std::string(1, '\0'), "\x80\x80\x80\x80\x10", "\x81\x80\x80\x80\x80\x20",
                                   '\xfe' + std::string(8, '\xff') + '\1'});
    size_t refused = 0;
    for (size_t at = body.find('\n') + 1; at < body.size(); ++at)
        for (const std::string& number : numbers)
            refused += !reads_soundly(with_checksum(std::string(body).replace(at, 1, number)));
    // Serials and the values of measures may be any.
    EXPECT_GT(refused, numbers.size() * (body.size() - body.find('\n')) / 2);
    EXPECT_FALSE(reads_soundly(with_checksum(body + '\0')));
    EXPECT_FALSE(reads_soundly(whole.substr(0, body.find('\n') + 3)));
    EXPECT_FALSE(reads_soundly("no summary"));
    // A serial that stands there twice.
    EXPECT_FALSE(
        reads_soundly(with_checksum(body.substr(0, body.size() - 8) + body.substr(body.size() - 16, 8))));
}

TEST(SummaryFile, HoldsWhatALotCanHaveToTheLast) {
    constexpr auto reach = static_cast<int64_t>(centre_reach * centre_units);
    const MeasureName name{"x", "R"};
    const auto count = [&name](int32_t value, uint64_t of) {
        return [=](LotSummary& lot) { lot.numbers[name].add(value, static_cast<uint32_t>(of)); };
    };
    const auto black = [](int32_t value) { return [=](LotSummary& lot) { lot.black[2].add(value); }; };
    const auto sum = [](int64_t value) {
        return [=](LotSummary& lot) { lot.centre_sums.sum[1][3] = value; };
    };
    const auto product = [](int64_t value) {
        return [=](LotSummary& lot) { lot.centre_sums.products[0][2][1] = value; };
    };
    const auto centres = [](uint64_t modules) {
        return [=](LotSummary& lot) { lot.centre_sums.modules = modules; };
    };
    const auto block = [](uint64_t modules, uint64_t good, uint64_t number = 9) {
        SequenceBlock of;
        of.modules = modules;
        of.good = good;
        return [=](LotSummary& lot) { lot.sequence.set(0, {{number, of}}); };
    };
    const auto text = [](size_t length, uint64_t modules) {
        return [=](LotSummary& lot) { lot.settings[std::string(length, 'x')] = modules; };
    };
    const std::pair<std::function<void(LotSummary&)>, bool> cases[] = {
        {count(10'000'000, 1), true},
        {count(10'000'001, 1), false},
        {count(-10'000'000, 127), true},
        {count(-10'000'001, 1), false},
        {count(7, LotSummary::most_modules), true},
        {count(7, LotSummary::most_modules + 1), false},
        {black(0), true},
        {black(-1), false},
        {black(65535), true},
        {black(65536), false},
        {sum(3 * reach), true},
        {sum(3 * reach + 1), false},
        {sum(-3 * reach), true},
        {sum(-3 * reach - 1), false},
        {product(3 * reach * reach), true},
        {product(3 * reach * reach + 1), false},
        {product(-3 * reach * reach), true},
        {product(-3 * reach * reach - 1), false},
        {centres(4), false},
        {block(3, 3), true},
        {block(1, 0, UINT64_MAX), true},
        {block(4, 3), false},
        {block(2, 3), false},
        {block(0, 0), false},
        {text(0, 0), true},
        {text(127, 128), true},
        {text(128, 16383), true},
        {text(300, UINT64_MAX), true},
        {[](LotSummary& lot) { lot.verdicts[0] = 2; }, false},
        {[](LotSummary& lot) { lot.verdicts[0] = LotSummary::most_modules + 1; }, false},
        {[](LotSummary& lot) { lot.gains.counts()[3][24].add(5); }, false},
        {[](LotSummary& lot) { lot.kind->grid.height = 6; }, false},
        {[](LotSummary& lot) { lot.kind->pattern = static_cast<BayerPattern>(4); }, false},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        LotSummary lot = three_modules();
        cases[i].first(lot);
        EXPECT_EQ(reads_soundly(encode_summary(lot)), cases[i].second) << i;
        if (cases[i].second) {
            EXPECT_EQ(encode_summary(decode_summary(encode_summary(lot), "again")), encode_summary(lot)) << i;
        }
    }
}

TEST(LotSummary, TakesNoModuleOfAKindThatCannotBe) {
    EXPECT_EQ(LotSummary().add(module_of(0), "x:1"), LotSummary::Added::yes);
    for (const auto side : {&ResultFrame::width, &ResultFrame::height, &ResultFrame::bits}) {
        ResultLine result = module_of(0);
        result.frame.value().*side -= 3;
        EXPECT_THROW(LotSummary().add(result, "x:1"), Failure) << result.frame->width;
    }
    for (const auto number :
         {&ResultGrid::algorithm, &ResultGrid::step, &ResultGrid::width, &ResultGrid::height}) {
        ResultLine result = module_of(0);
        result.grid.value().*number += 60;
        EXPECT_THROW(LotSummary().add(result, "x:1"), Failure) << result.grid->step;
    }
}

} // namespace
} // namespace zerklsc::tool
