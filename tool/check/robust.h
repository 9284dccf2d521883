// Estimates that a few wild values cannot spoil.
#pragma once

#include <vector>

namespace zerklsc::tool {

// The middle value, or the mean of the two middle ones; 0 of none. Reorders the values.
double median_of(std::vector<float>& values);

// The value below which `fraction` of the values lie. Reorders the values; 0 of none.
double quantile_of(std::vector<float>& values, double fraction);

// Standard deviations of a normal distribution in its median absolute deviation.
constexpr double normal_deviations_per_mad = 1.482602;

// The standard deviation that a normal distribution with this median absolute deviation has (F. R. Hampel,
// "The influence curve and its role in robust estimation", JASA 69, 1974). Reorders the values.
double deviation_from(std::vector<float>& values, double centre);

// Tukey's biweight at a residual of `t` tuning constants: 1 for none, 0 from 1 on (A. E. Beaton, J. W. Tukey,
// "The fitting of power series", Technometrics 16, 1974).
double biweight(double t);

// The tuning constant, in standard deviations, that is 95 % efficient on normal noise.
constexpr double biweight_reach = 4.685;

} // namespace zerklsc::tool
