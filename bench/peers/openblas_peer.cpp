// OpenBLAS: the inverse of a matrix of the size of the surface fit's, by LU factors with partial pivoting.
#include "peers/peers.h"

#if defined(ZERKLSC_HAVE_OPENBLAS)

#include <memory>

#include <cblas.h>

#include "support/random.h"
#include "zerklsc.h"

// LAPACK, which OpenBLAS holds and its header leaves out.
extern "C" {
void dgetrf_(const int* rows, const int* columns, double* a, const int* stride, int* pivots, int* status);
void dgetri_(const int* n, double* a, const int* stride, const int* pivots, double* work, const int* room,
             int* status);
}

std::vector<zerklsc::bench::Peer> zerklsc::bench::openblas_peers() {
    constexpr int n = 825;
    openblas_set_num_threads(1);
    const auto source = std::make_shared<std::vector<double>>(n * n);
    const auto result = std::make_shared<std::vector<double>>(n * n);
    testing::Random random(n);
    for (double& v : *source)
        v = random.unit() - 0.5;
    const auto theirs = [=] {
        *result = *source;
        const int size = n, room = 64 * n;
        int status = 0;
        std::vector<int> pivots(n);
        std::vector<double> work(static_cast<size_t>(room));
        dgetrf_(&size, &size, result->data(), &size, pivots.data(), &status);
        dgetri_(&size, result->data(), &size, pivots.data(), work.data(), &room, &status);
    };
    const auto ours = [=] {
        *result = *source;
        matrix_inv(result->data(), n);
    };
    return {{"OpenBLAS", "inverse of an 825 x 825 matrix, one thread", theirs, ours}};
}

#else

std::vector<zerklsc::bench::Peer> zerklsc::bench::openblas_peers() {
    return {};
}

#endif
