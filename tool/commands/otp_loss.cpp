// add_loss, reason_of, limit_of
#include "commands/otp_loss.h"

#include <algorithm>

#include <fmt/format.h>

#include "io/levels_json.h"
#include "io/text_table.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// Rounding alone takes up to 1/128 (mode 0) or 1/32 (mode 1) off a gain of 1.0; a loss beyond that is a
// fault.
constexpr std::array<double, 2> usual_max_error{1.0, 4.0};

} // namespace

void add_loss(Report& report, const GainTables& tables, int mode, size_t size, const StreamLoss& loss) {
    report.print(fmt::format("mode {}, {} bytes for {} nodes, {} of them not stored\n", mode, size,
                             inner_nodes(tables), unstored_nodes(tables, mode)));
    std::vector<std::vector<std::string>> rows{{"channel", "saturated fields", "largest gain error"}};
    for (const Colour colour : all_colours) {
        const auto i = static_cast<size_t>(colour);
        rows.push_back(
            {name_of(colour), fmt::format("{}", loss.saturated[i]), percent(loss.largest_error[i])});
    }
    report.print(text_table(rows));
    report.add("mode", mode);
    report.add("stream_size", uint64_t{size});
    report.add("nodes", inner_nodes(tables));
    report.add("unstored_nodes", unstored_nodes(tables, mode));
    report.add("channels", json_of(loss));
}

std::string reason_of(const GainTables& tables, int mode, const StreamLoss& loss) {
    if (decodes_wrong(tables))
        return fmt::format(
            "a grid of {} x {} nodes, odd by even, decodes wrong in its lower half: choose a step with "
            "another node count (zerklsc resample)",
            tables.table_width - 2 * ZERKLSC_BORDER, tables.table_height - 2 * ZERKLSC_BORDER);
    if (std::ranges::any_of(loss.saturated, [](int n) { return n > 0; }))
        return fmt::format("gains of neighbouring nodes differ by more than the fields of the stream hold: "
                           "{}choose a smaller step "
                           "(zerklsc resample) where the lens is that steep, or look at the capture for "
                           "dust, shadows and clipping",
                           mode == 0 ? "" : "use --mode 0, or ");
    if (unstored_nodes(tables, mode) > 0)
        return "the last nodes are not stored: use --mode 0, or choose a step with another node count";
    return "rounding alone loses that much: use --mode 0, or allow it with --max-error";
}

double limit_of(double max_error, int mode) {
    return max_error > 0 ? max_error : usual_max_error[static_cast<size_t>(mode)];
}

} // namespace zerklsc::tool
