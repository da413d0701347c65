#include "apps/gpsbook/book/Reorder.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "apps/gpsbook/book/Deletion.h"
#include "apps/gpsbook/fields/Field.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

// Exchanges until the order is reached; `swap` exchanges two positions of the list.
template <class Swap>
void Reach(const std::vector<int>& order, const Swap& swap) {
    const std::size_t n = order.size();
    std::vector<int> holds(n);  // what stands at a position now, by its position at the beginning
    std::iota(holds.begin(), holds.end(), 0);
    std::vector<int> stands = holds;  // and where it stands
    for (std::size_t i = 0; i < n; ++i) {
        const auto j = static_cast<std::size_t>(stands[static_cast<std::size_t>(order[i])]);
        if (i == j) continue;
        swap(static_cast<int>(i), static_cast<int>(j));
        std::swap(holds[i], holds[j]);
        stands[static_cast<std::size_t>(holds[i])] = static_cast<int>(i);
        stands[static_cast<std::size_t>(holds[j])] = static_cast<int>(j);
    }
}

void CopyPoint(CPunGps& from, CPunGps& to) {
    for (const PointField& field : PointFields()) {
        // Its parts follow one by one, also when they make no time that exists.
        if (field.kind != FieldKind::time) field.set(to, field.get(from));
    }
}

}  // namespace

std::vector<int> OrderAfterMove(int size, const std::vector<int>& moved, int to) {
    std::vector<int> order;
    for (int i = 0; i < size; ++i)
        if (!std::binary_search(moved.begin(), moved.end(), i)) order.push_back(i);
    const auto at = std::min(static_cast<std::ptrdiff_t>(order.size()), static_cast<std::ptrdiff_t>(to));
    order.insert(order.begin() + at, moved.begin(), moved.end());
    return order;
}

void OrderGroups(gpsproject::BookEdits& edits, const std::vector<int>& order) {
    Reach(order, [&](int i, int j) {
        edits.GetBook().GrpGpsSwap(i, j);
        edits.GroupsSwapped(i, j);
    });
}

void OrderPoints(gpsproject::BookEdits& edits, int group, const std::vector<int>& order) {
    Reach(order, [&](int i, int j) {
        edits.GetBook().PunGpsSwap(group, i, j);
        edits.PointsSwapped(group, i, j);
    });
}

void MoveToGroup(gpsproject::BookEdits& edits, int from, const std::vector<int>& points, int group, int to) {
    CLibGps& book = edits.GetBook();
    std::vector<Place> former;
    for (const int p : points) {
        CopyPoint(*book.GetPunAt(from, p), *book.InsPunAt(group, to, false));
        edits.PointInserted(group, to++);
        former.push_back({from, p});
    }
    DeletePlaces(edits, former);
}

}  // namespace gpsbook
