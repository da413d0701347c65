#include "tests/host/coord/LeastSquares.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace gpstest {

std::vector<double> SolveLeastSquares(const std::vector<std::vector<double>>& rows,
                                      const std::vector<double>& b) {
    const std::size_t n = rows.front().size();
    std::vector<std::vector<long double>> m(n, std::vector<long double>(n + 1, 0));
    for (std::size_t k = 0; k < rows.size(); ++k)
        for (std::size_t i = 0; i < n; ++i) {
            const long double a = rows[k][i];
            for (std::size_t j = 0; j < n; ++j) m[i][j] += a * rows[k][j];
            m[i][n] += a * b[k];
        }
    for (std::size_t i = 0; i < n; ++i) {
        std::size_t pivot = i;
        for (std::size_t r = i + 1; r < n; ++r)
            if (std::fabs(m[r][i]) > std::fabs(m[pivot][i])) pivot = r;
        std::swap(m[i], m[pivot]);
        for (std::size_t r = 0; r < n; ++r) {
            if (r == i) continue;
            const long double f = m[r][i] / m[i][i];
            for (std::size_t j = i; j <= n; ++j) m[r][j] -= f * m[i][j];
        }
    }
    std::vector<double> x;
    for (std::size_t i = 0; i < n; ++i) x.push_back(static_cast<double>(m[i][n] / m[i][i]));
    return x;
}

}  // namespace gpstest
