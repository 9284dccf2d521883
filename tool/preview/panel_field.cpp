// PanelField, brightness_fields, clipped_places, block_field, node_field, gain_field
#include "preview/panel_field.h"

#include <algorithm>
#include <numeric>

#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// Along a side, the samples of a plane that fall on one drawn pixel: one at least.
struct Under {
    int begin, end;

    Under(int pixel, int pixels, int samples)
        : begin(pixel * samples / pixels), end(std::max((pixel + 1) * samples / pixels, begin + 1)) {}
    int count() const { return end - begin; }
};

// Adds a row of pixels to the field of a plane, by the sums of its columns, every second of which is its own,
// over the samples of `rows`.
void add_means(const uint32_t* column_sums, int columns, const Under& rows, PanelField& field) {
    for (int x = 0; x < field.width; ++x) {
        const Under under(x, field.width, columns);
        uint64_t sum = 0;
        for (int i = under.begin; i < under.end; ++i)
            sum += column_sums[2 * i];
        field.values.push_back(static_cast<double>(sum) / (double(under.count()) * rows.count()));
    }
}

bool any_clipped(const RawFrame& frame, int plane, const Under& columns, const Under& rows) {
    for (int j = rows.begin; j < rows.end; ++j)
        for (int i = columns.begin; i < columns.end; ++i)
            if (frame.at(2 * i + (plane & 1), 2 * j + (plane >> 1)) >= frame.white_level())
                return true;
    return false;
}

PanelField empty_field(PanelSize size) {
    PanelField field{size.width, size.height, {}};
    field.values.reserve(static_cast<size_t>(size.width) * static_cast<size_t>(size.height));
    return field;
}

// Values that lie `stride` apart.
struct Line {
    double* values;
    int count, stride;
};

// Replaces each value by the mean over a window that is cut off at the ends.
void smooth(Line line, int radius) {
    std::vector<double> sums(static_cast<size_t>(line.count) + 1); // of so many values from the beginning
    for (int i = 0; i < line.count; ++i)
        sums[static_cast<size_t>(i) + 1] =
            sums[static_cast<size_t>(i)] + line.values[static_cast<ptrdiff_t>(i) * line.stride];
    for (int i = 0; i < line.count; ++i) {
        const int begin = std::max(i - radius, 0), end = std::min(i + radius + 1, line.count);
        const double sum = sums[static_cast<size_t>(end)] - sums[static_cast<size_t>(begin)];
        line.values[static_cast<ptrdiff_t>(i) * line.stride] = sum / (end - begin);
    }
}

void smooth(PanelField& field, int radius) {
    for (int y = 0; y < field.height; ++y)
        smooth({&field.values[static_cast<size_t>(y) * static_cast<size_t>(field.width)], field.width, 1},
               radius);
    for (int x = 0; x < field.width; ++x)
        smooth({&field.values[static_cast<size_t>(x)], field.height, field.width}, radius);
}

// Between the values of `at(i, j)` around (u, v).
template <class F>
double bilinear(double u, double v, F at) {
    const int i = static_cast<int>(u), j = static_cast<int>(v);
    const double fu = u - i, fv = v - j;
    const double above = at(i, j) * (1 - fu) + at(i + 1, j) * fu;
    const double below = at(i, j + 1) * (1 - fu) + at(i + 1, j + 1) * fu;
    return above * (1 - fv) + below * fv;
}

} // namespace

double PanelField::smallest() const {
    return *std::ranges::min_element(values);
}

double PanelField::largest() const {
    return *std::ranges::max_element(values);
}

double PanelField::mean() const {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

PanelField PanelField::scaled(double factor) const {
    PanelField result = *this;
    for (double& v : result.values)
        v *= factor;
    return result;
}

std::array<PanelField, 4> brightness_fields(const RawFrame& frame, const BlackLevel& black, PanelSize size) {
    std::array fields{empty_field(size), empty_field(size), empty_field(size), empty_field(size)};
    std::vector<uint32_t> sums(static_cast<size_t>(frame.width));
    for (int y = 0; y < size.height; ++y) {
        const Under rows(y, size.height, frame.height / 2);
        for (const int parity : {0, 1}) {
            std::ranges::fill(sums, 0U);
            for (int j = rows.begin; j < rows.end; ++j)
                add_light(frame, 2 * j + parity, black, sums);
            for (const size_t column : {size_t{0}, size_t{1}})
                add_means(&sums[column], frame.width / 2, rows,
                          fields[2 * static_cast<size_t>(parity) + column]);
        }
    }
    for (PanelField& field : fields)
        for (int round = 0; round < 2; ++round)
            smooth(field, 3);
    return fields;
}

std::vector<bool> clipped_places(const RawFrame& frame, int plane, PanelSize size) {
    std::vector<bool> places;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            places.push_back(any_clipped(frame, plane, Under(x, size.width, frame.width / 2),
                                         Under(y, size.height, frame.height / 2)));
    return places;
}

PanelField block_field(const BlockMeans& blocks, PanelSize size) {
    PanelField field = empty_field(size);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            // Half a block beyond the middles of the outermost blocks, these go on.
            const double u =
                std::clamp((x + 0.5) * blocks.columns / size.width - 0.5, 0.0, blocks.columns - 1.0);
            const double v = std::clamp((y + 0.5) * blocks.rows / size.height - 0.5, 0.0, blocks.rows - 1.0);
            field.values.push_back(bilinear(u, v, [&](int i, int j) {
                return blocks.at(std::min(i, blocks.columns - 1), std::min(j, blocks.rows - 1));
            }));
        }
    return field;
}

PanelField node_field(const GainTables& tables, const std::vector<double>& values, PanelSize size) {
    const auto node = [&](int i, int j) {
        return values[static_cast<size_t>((j + 1) * tables.table_width + i + 1)];
    };
    PanelField field = empty_field(size);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const double u = (x + 0.5) * tables.plane_width() / size.width / tables.step;
            const double v = (y + 0.5) * tables.plane_height() / size.height / tables.step;
            field.values.push_back(bilinear(u, v, node));
        }
    return field;
}

PanelField gain_field(const GainTables& tables, int plane, PanelSize size) {
    std::vector<double> gains;
    for (const uint16_t gain : tables.gains[static_cast<size_t>(plane)])
        gains.push_back(gain / double{ZERKLSC_UNITY_GAIN});
    return node_field(tables, gains, size);
}

} // namespace zerklsc::tool
