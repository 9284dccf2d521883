// Uses what only C++ can name, and a record by its C name.
#include <cstdio>
#include <zerklsc.h>

int main() {
    double matrix[4] = {2, 0, 0, 4};
    lnc_bicubic_weight_t_64_tag weights;
    generate_bicubic_weight_table(&weights, 64);
    const bool good =
        matrix_inv(matrix, 2) == 0 && matrix[0] == 0.5 && matrix[3] == 0.25
        && cubic_1D(1024, 2048, 3072, 4096, 32, 64, &weights) == cubic_1D(1024, 2048, 3072, 4096, 32, 64)
        && get_boundary_pos(10, -3, ZERKLSC_BOUNDARY_MIRROR) == 3;
    if (!good)
        std::puts("a function that only C++ can name gave a wrong result");
    return good ? 0 : 1;
}
