// encode_summary, is_summary, decode_summary
#include "lot/summary_file.h"

#include <algorithm>
#include <limits>

#include <fmt/format.h>
#include <zlib.h>

#include "failure.h"

namespace zerklsc::tool {
namespace {

constexpr std::string_view beginning = "{\"format\":\"zerklsc-lot-summary\",\"version\":";
constexpr int version = 1;
constexpr size_t checksum_size = 4;

// Numbers are written seven bits to a byte, the lowest first, with the highest bit where more follow.
class Writer {
  public:
    std::string bytes;

    void number(uint64_t value) {
        for (; value >= 0x80; value >>= 7)
            bytes += static_cast<char>(value | 0x80);
        bytes += static_cast<char>(value);
    }
    // The sign in the lowest bit.
    void integer(int64_t value) {
        number(value < 0 ? 2 * ~static_cast<uint64_t>(value) + 1 : 2 * static_cast<uint64_t>(value));
    }
    void text(const std::string& value) {
        number(value.size());
        bytes += value;
    }
    void word(uint64_t value) {
        for (int shift = 0; shift < 64; shift += 8)
            bytes += static_cast<char>(value >> shift);
    }
};

class Reader {
  public:
    Reader(std::string_view bytes, const std::string& name) : bytes_(bytes), name_(name) {}

    void number(uint64_t& value) {
        value = 0;
        for (int shift = 0;; shift += 7) {
            const auto byte = static_cast<uint8_t>(take(1)[0]);
            if (shift == 63 && byte > 1)
                damaged();
            value |= uint64_t{byte & 0x7FU} << shift;
            if (byte < 0x80)
                return;
        }
    }
    void integer(int64_t& value) {
        uint64_t both = 0;
        number(both);
        value = static_cast<int64_t>((both & 1) != 0 ? ~(both >> 1) : both >> 1);
    }
    void text(std::string& value) {
        uint64_t size = 0;
        number(size);
        value = take(size);
    }
    void word(uint64_t& value) {
        value = 0;
        const std::string_view from = take(8);
        for (size_t i = 0; i < from.size(); ++i)
            value |= uint64_t{static_cast<uint8_t>(from[i])} << (8 * i);
    }
    // A number of things of which each takes a byte or more.
    uint64_t count() {
        uint64_t value = 0;
        number(value);
        if (value > bytes_.size())
            damaged();
        return value;
    }
    bool at_end() const { return bytes_.empty(); }
    const std::string& name() const { return name_; }

    [[noreturn]] void damaged() const {
        data_failure("{}: is a damaged summary of a lot: make it again", name_);
    }

  private:
    std::string_view take(uint64_t size) {
        if (size > bytes_.size())
            damaged();
        const std::string_view taken = bytes_.substr(0, static_cast<size_t>(size));
        bytes_.remove_prefix(static_cast<size_t>(size));
        return taken;
    }

    std::string_view bytes_;
    const std::string& name_;
};

// What follows names every field once, for writing and reading.

template <class Archive, class Number>
void whole(Archive& archive, Number& value) {
    auto wide = static_cast<int64_t>(value);
    archive.integer(wide);
    if (wide < int64_t{std::numeric_limits<int>::min()} || wide > int64_t{std::numeric_limits<int>::max()})
        wide = -1;
    value = static_cast<Number>(wide);
}

struct Range {
    int64_t lowest, highest;
};
constexpr Range any_value{-10'000'000, 10'000'000}; // beyond every value that there is
constexpr Range sixteen_bits{0, 65535};

void counts(Writer& writer, const ValueCounts& values, const Range&) {
    uint64_t size = 0;
    values.each([&](int32_t, uint32_t) { ++size; });
    writer.number(size);
    int64_t before = 0;
    values.each([&](int32_t value, uint32_t count) {
        writer.integer(value - before);
        writer.number(count);
        before = value;
    });
}

void counts(Reader& reader, ValueCounts& values, const Range& range) {
    int64_t value = 0;
    for (uint64_t left = reader.count(), first = left; left > 0; --left) {
        int64_t further = 0;
        uint64_t count = 0;
        reader.integer(further);
        reader.number(count);
        if (further < range.lowest - value || further > range.highest - value
            || (left != first && further <= 0) || count == 0
            || count > LotSummary::most_modules - values.total())
            reader.damaged();
        value += further;
        values.add(static_cast<int32_t>(value), static_cast<uint32_t>(count));
    }
}

template <class Key, class Value, class Both>
void map(Writer& writer, std::map<Key, Value>& values, const Both& both) {
    writer.number(values.size());
    for (auto& [key, value] : values) {
        Key copy = key;
        both(copy, value);
    }
}

template <class Key, class Value, class Both>
void map(Reader& reader, std::map<Key, Value>& values, const Both& both) {
    for (uint64_t left = reader.count(); left > 0; --left) {
        Key key{};
        Value value{};
        both(key, value);
        if (!values.emplace(std::move(key), std::move(value)).second)
            reader.damaged();
    }
}

template <class Archive>
void kind(Archive& archive, LotKind& kind) {
    ResultGrid& grid = kind.grid;
    for (int* field : {&kind.width, &kind.height, &kind.bits, &grid.algorithm, &grid.step, &grid.width,
                       &grid.height, &grid.filter_radius, &grid.shading_percent})
        whole(archive, *field);
    whole(archive, kind.pattern);
}

template <class Archive>
void measures(Archive& archive, LotSummary& summary) {
    map(archive, summary.costs, [&](std::string& name, Cost& cost) {
        archive.text(name);
        archive.number(cost.lost);
        archive.number(cost.lost_alone);
    });
    map(archive, summary.checks, [&](MeasureName& name, CheckCounts& check) {
        archive.text(name.first);
        archive.text(name.second);
        for (size_t i = 0; i < check.values.size(); ++i) {
            counts(archive, check.values[i], any_value);
            archive.number(check.without_number[i]);
        }
    });
    map(archive, summary.numbers, [&](MeasureName& name, ValueCounts& values) {
        archive.text(name.first);
        archive.text(name.second);
        counts(archive, values, any_value);
    });
    map(archive, summary.settings, [&](std::string& name, uint64_t& modules) {
        archive.text(name);
        archive.number(modules);
    });
}

template <class Archive>
void centres(Archive& archive, LotSummary& summary) {
    CentreSums& sums = summary.centre_sums;
    archive.number(sums.modules);
    for (size_t axis = 0; axis < CentreSums::axes; ++axis)
        for (size_t c = 0; c < summary.centre.size(); ++c) {
            counts(archive, summary.centre[c][axis], any_value);
            archive.integer(sums.sum[axis][c]);
            for (size_t other = 0; other <= c; ++other)
                archive.integer(sums.products[axis][c][other]);
        }
}

template <class Archive>
void blocks(Archive& archive, std::map<uint64_t, SequenceBlock>& blocks) {
    map(archive, blocks, [&](uint64_t& number, SequenceBlock& block) {
        archive.number(number);
        archive.number(block.modules);
        archive.number(block.good);
        for (ValueCounts& values : block.corner_gain)
            counts(archive, values, sixteen_bits);
        for (ValueCounts& values : block.centre)
            counts(archive, values, any_value);
    });
}

void sequence(Writer& writer, Sequence& sequence) {
    writer.number(static_cast<uint64_t>(sequence.shift()));
    auto copy = sequence.blocks();
    blocks(writer, copy);
}

void sequence(Reader& reader, Sequence& sequence) {
    uint64_t shift = 0;
    std::map<uint64_t, SequenceBlock> read;
    reader.number(shift);
    blocks(reader, read);
    if (!sequence.set(shift, std::move(read)))
        reader.damaged();
}

// The marks are spread evenly: nothing is shorter than they are.
void serials(Writer& writer, SerialSet& set) {
    writer.number(set.size());
    for (const uint64_t mark : set.sorted())
        writer.word(mark);
}

void serials(Reader& reader, SerialSet& set) {
    for (uint64_t left = reader.count(); left > 0; --left) {
        uint64_t mark = 0;
        reader.word(mark);
        if (mark == 0 || mark >> 63 != 0 || !set.insert(mark))
            reader.damaged();
    }
}

// How many nodes have counts: all of a table, or none.
size_t nodes_in(Writer& writer, LotSummary& summary) {
    writer.number(summary.gains.counts()[0].size());
    return summary.gains.counts()[0].size();
}

size_t nodes_in(Reader& reader, LotSummary& summary) {
    const uint64_t nodes = reader.count();
    if (nodes != 0 && (!summary.kind || nodes != summary.kind->grid.nodes()))
        reader.damaged();
    for (auto& plane : summary.gains.counts())
        plane.resize(static_cast<size_t>(nodes));
    return static_cast<size_t>(nodes);
}

template <class Archive>
void all(Archive& archive, LotSummary& summary) {
    for (uint64_t& modules : summary.verdicts)
        archive.number(modules);
    for (uint64_t* lines : {&summary.left_out.torn, &summary.left_out.bad, &summary.left_out.repeated,
                            &summary.left_out.other_kind})
        archive.number(*lines);
    uint64_t has_kind = summary.kind ? 1 : 0;
    archive.number(has_kind);
    if (has_kind != 0) {
        LotKind copy = summary.kind.value_or(LotKind());
        kind(archive, copy);
        summary.kind = copy;
    }
    measures(archive, summary);
    centres(archive, summary);
    sequence(archive, summary.sequence);
    const size_t nodes = nodes_in(archive, summary);
    for (size_t c = 0; c < summary.gains.counts().size(); ++c) {
        counts(archive, summary.black[c], sixteen_bits);
        for (size_t node = 0; node < nodes; ++node)
            counts(archive, summary.gains.counts()[c][node], sixteen_bits);
    }
    serials(archive, summary.serials);
}

uint32_t checksum_of(std::string_view bytes) {
    return static_cast<uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

// Sums as that many modules can have, whose sums with those of other parts fit.
bool are_sound(const CentreSums& sums) {
    constexpr auto reach = static_cast<int64_t>(centre_reach * centre_units);
    const auto modules = static_cast<int64_t>(sums.modules);
    const auto within = [&](int64_t sum, int64_t most) {
        return sum >= -modules * most && sum <= modules * most;
    };
    for (size_t axis = 0; axis < CentreSums::axes; ++axis)
        for (size_t c = 0; c < all_colours.size(); ++c) {
            if (!within(sums.sum[axis][c], reach))
                return false;
            for (size_t other = 0; other <= c; ++other)
                if (!within(sums.products[axis][c][other], reach * reach))
                    return false;
        }
    return true;
}

bool are_sound(const std::map<uint64_t, SequenceBlock>& blocks, uint64_t modules) {
    return std::ranges::all_of(blocks, [&](const auto& entry) {
        const SequenceBlock& block = entry.second;
        return block.modules > 0 && block.modules <= modules && block.good <= block.modules;
    });
}

// That the parts of a summary go together, so that nothing that follows needs to ask.
void check_whole(const Reader& reader, const LotSummary& summary) {
    const auto too_many = [](uint64_t modules) { return modules > LotSummary::most_modules; };
    if (std::ranges::any_of(summary.verdicts, too_many) || too_many(summary.modules())
        || summary.modules() != summary.serials.size() || summary.with_gains() > summary.modules()
        || summary.centre_sums.modules > summary.modules() || !are_sound(summary.centre_sums)
        || !are_sound(summary.sequence.blocks(), summary.modules()))
        reader.damaged();
    for (size_t c = 0; c < summary.gains.counts().size(); ++c)
        for (const ValueCounts& node : summary.gains.counts()[c])
            if (node.total() != summary.with_gains() || node.total() == 0)
                reader.damaged();
    if (summary.kind)
        check_kind(*summary.kind, reader.name());
}

} // namespace

std::string encode_summary(LotSummary summary) {
    Writer writer;
    writer.bytes = fmt::format("{}{},\"modules\":{}}}\n", beginning, version, summary.modules());
    all(writer, summary);
    const uint32_t checksum = checksum_of(writer.bytes);
    for (int shift = 0; shift < 32; shift += 8)
        writer.bytes += static_cast<char>(checksum >> shift);
    return std::move(writer.bytes);
}

bool is_summary(std::string_view head) {
    return head.starts_with(beginning);
}

LotSummary decode_summary(std::string_view bytes, const std::string& name) {
    const size_t line = bytes.find('\n');
    const std::string head = fmt::format("{}{},", beginning, version);
    if (is_summary(bytes) && !bytes.starts_with(head))
        data_failure("{}: is a lot's summary of another version than {}: make it again with this tool", name,
                     version);
    Reader whole(bytes, name);
    if (line == std::string_view::npos || bytes.size() < line + 1 + checksum_size)
        whole.damaged();
    const std::string_view covered = bytes.substr(0, bytes.size() - checksum_size);
    uint32_t checksum = 0;
    for (size_t i = 0; i < checksum_size; ++i)
        checksum |= uint32_t{static_cast<uint8_t>(bytes[covered.size() + i])} << (8 * i);
    if (checksum != checksum_of(covered))
        whole.damaged();
    Reader reader(covered.substr(line + 1), name);
    LotSummary summary;
    all(reader, summary);
    if (!reader.at_end())
        reader.damaged();
    check_whole(reader, summary);
    return summary;
}

} // namespace zerklsc::tool
