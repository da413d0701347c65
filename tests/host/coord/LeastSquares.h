// Least squares the plain way, to compare the fits with: normal equations of the whole system at once.
#pragma once

#include <vector>

namespace gpstest {

/// Solves min |A x - b| for the given rows of A, in extended precision with row pivoting.
/// Requires: as many rows as values in b, at least as many as unknowns, of full rank.
std::vector<double> SolveLeastSquares(const std::vector<std::vector<double>>& rows,
                                      const std::vector<double>& b);

}  // namespace gpstest
