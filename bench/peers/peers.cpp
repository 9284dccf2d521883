#include "peers/peers.h"

#include <cstdlib>

#include <fmt/core.h>

#include "report.h"
#include "timing.h"

namespace zerklsc::bench {

void print_peers(double budget) {
    unsetenv("ZERKLSC_CPU");
    std::vector<Peer> peers;
    for (const auto source : {opencv_peers, lensfun_peers, eigen_peers, openblas_peers})
        for (Peer& peer : source())
            peers.push_back(std::move(peer));
    if (peers.empty()) {
        fmt::print("No other library to compare with was found when this was built.\n\n");
        return;
    }
    fmt::print("| library | work | its ms | zerklsc ms | zerklsc is × faster |\n|---|---|---|---|---|\n");
    for (const Peer& peer : peers) {
        const auto medians = medians_in_turn({peer.theirs, peer.ours}, budget);
        fmt::print("| {} | {} | {:.3g} | {:.3g} | {:.1f} |\n", peer.name, peer.work, 1e3 * medians[0],
                   1e3 * medians[1], medians[0] / medians[1]);
    }
    fmt::print("\n");
}

} // namespace zerklsc::bench
