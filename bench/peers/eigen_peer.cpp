// Eigen: the inverse of a matrix of the size of the surface fit's.
#include "peers/peers.h"

#if defined(ZERKLSC_HAVE_EIGEN)

#include <memory>

#include <Eigen/LU>

#include "support/random.h"
#include "zerklsc.h"

std::vector<zerklsc::bench::Peer> zerklsc::bench::eigen_peers() {
    constexpr int n = 825;
    const auto source = std::make_shared<Eigen::MatrixXd>(n, n);
    const auto result = std::make_shared<Eigen::MatrixXd>(n, n);
    testing::Random random(n);
    for (int i = 0; i < n * n; ++i)
        source->data()[i] = random.unit() - 0.5;
    const auto theirs = [=] { *result = source->inverse(); };
    const auto ours = [=] {
        *result = *source;
        matrix_inv(result->data(), n);
    };
    return {{"Eigen", "inverse of an 825 x 825 matrix", theirs, ours}};
}

#else

std::vector<zerklsc::bench::Peer> zerklsc::bench::eigen_peers() {
    return {};
}

#endif
