// A flat field of 99 x 74 samples in each plane and its analysis, both of which a test changes.
#pragma once

#include <cmath>

#include <gtest/gtest.h>

#include "check/keep_out.h"
#include "check/series.h"

struct Flat {
    // By plane; each level and each noise is another.
    static constexpr std::array<double, 4> light{500, 400, 600, 300}, variance{16, 25, 36, 9};
    static constexpr std::array<const char*, 4> colours{"Gb", "B", "R", "Gr"};

    zerklsc::tool::RawFrame frame;
    zerklsc::tool::BlackLevel black{60, 64, 68, 72};
    zerklsc::tool::CalibrationSettings settings;
    zerklsc::tool::Analysis analysis;
    zerklsc::tool::CheckLimits limits; // that warn of everything, so that each finding has its advice
    zerklsc::tool::Findings findings;

    // Of so many tiles, with samples that belong to none at the right and at the bottom.
    explicit Flat(int columns = 12, int rows = 9) {
        using namespace zerklsc::tool;
        frame.width = 16 * columns + 6;
        frame.height = 16 * rows + 4;
        frame.bits = 12;
        for (int y = 0; y < frame.height; ++y)
            for (int x = 0; x < frame.width; ++x) {
                const auto plane = static_cast<size_t>(plane_of_pixel(x, y));
                frame.samples.push_back(static_cast<uint16_t>(light[plane] + black[plane]));
            }
        analysis.tiles = measure_tiles(frame);
        for (size_t plane = 0; plane < 4; ++plane) {
            PlaneAnalysis& p = analysis.planes[plane];
            p.noise = {{100, variance[plane]}};
            p.bright = light[plane];
            p.cell_noise = 0.01;
            p.expected.assign(analysis.tiles.count(), static_cast<float>(light[plane]));
            p.rest.assign(analysis.tiles.count(), 0);
            // What a check would read behind the last row is no cell.
            p.cell_rest = p.rest;
            p.cell_rest.resize(analysis.tiles.count() + static_cast<size_t>(2 * columns), 9);
            p.surface.radial[0] = std::log(light[plane]);
            LogCells& cells = p.cells;
            cells.columns = columns;
            cells.rows = rows;
            cells.aspect = double(frame.height) / frame.width;
            for (int i = 0; i < columns; ++i)
                cells.u.push_back(u_of(i, columns, cells.aspect));
            for (int j = 0; j < rows; ++j)
                cells.v.push_back(v_of(j, rows, cells.aspect));
            cells.values.assign(analysis.tiles.count(), static_cast<float>(std::log(light[plane])));
        }
        for (const CheckLimit& limit : usual_limits())
            limits.set(std::string(limit.name) + "=-1e9,none");
    }

    void set(size_t plane, int x, int y, double above_black) {
        frame.at(2 * x + static_cast<int>(plane & 1), 2 * y + static_cast<int>(plane >> 1)) =
            static_cast<uint16_t>(above_black + black[plane]);
    }
    float& rest(size_t plane, int column, int row) {
        return analysis.planes[plane].rest[analysis.tiles.index(column, row)];
    }
    float& cell(size_t plane, int column, int row) {
        return analysis.planes[plane].cell_rest[analysis.tiles.index(column, row)];
    }

    zerklsc::tool::FlatCapture capture() const {
        return {frame, zerklsc::tool::BayerPattern::gbrg, black, settings};
    }

    template <class Check>
    void run(Check check) {
        const zerklsc::tool::FlatCapture flat = capture();
        findings.clear();
        analysis.tiles = with_means(analysis.tiles);
        check(zerklsc::tool::Judgement{flat, analysis, limits, findings});
    }

    const zerklsc::tool::Finding& found(const std::string& name) const {
        for (const zerklsc::tool::Finding& finding : findings)
            if (finding.name == name)
                return finding;
        throw std::runtime_error(name + " was not judged");
    }

    void expect(const std::string& name, double value, const char* plane, const std::string& advice,
                double off = 1e-4) const {
        const zerklsc::tool::Finding& finding = found(name);
        EXPECT_NEAR(finding.value, value, off * std::abs(value) + 1e-6) << name << ": " << finding.advice;
        EXPECT_EQ(finding.plane, plane) << name;
        EXPECT_NE(finding.advice.find(advice), std::string::npos) << finding.advice;
    }

    // The extremes of the samples are those of the frame; what else a test has set stays.
    zerklsc::tool::FrameTiles with_means(zerklsc::tool::FrameTiles tiles) const {
        const zerklsc::tool::FrameTiles measured = zerklsc::tool::measure_tiles(frame);
        for (size_t plane = 0; plane < 4; ++plane) {
            tiles.planes[plane].darkest = measured.planes[plane].darkest;
            tiles.planes[plane].brightest = measured.planes[plane].brightest;
        }
        return tiles;
    }
};

inline float& flat_at(zerklsc::tool::LogCells& cells, int column, int row) {
    return cells.values[static_cast<size_t>(row * cells.columns + column)];
}
