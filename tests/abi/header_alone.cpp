#include "zerklsc_driver.h"

// Both overloads and both instances are reachable by their plain names.
void header_alone(float* floats, unsigned short* gains, double* matrix) {
    expand_lsc_table_c2(floats, 3, 3);
    expand_lsc_table_c2(gains, 3, 3);
    matrix_inv(floats, 1);
    matrix_inv(matrix, 1);
}
