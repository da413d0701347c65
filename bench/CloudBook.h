// CloudBook: a field book in a cloud project with points as they are measured.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "bench/Workload.h"
#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/CGpsPntCloudTable.h"
#include "platform/entity/CCloudProject.h"

namespace bench {

struct CloudBook {
    CloudBook() : lib(&project, nullptr, nullptr, &map, 0) {
        project.SetGpsTables(&bases, &points);
        bases.SetOwner(&lib);
        points.SetOwner(&lib);
    }
    ~CloudBook() {
        bases.SetOwner(nullptr);
        points.SetOwner(nullptr);
    }
    CloudBook(const CloudBook&) = delete;
    CloudBook& operator=(const CloudBook&) = delete;

    /// One group, known under id 1, with n points whose every field has a value.
    void Fill(std::size_t n) {
        CGrpGps* group = lib.AddGrp(false);
        group->SetCloudId(1);
        bases.AddItemToTable(group);
        lib.PunArReserve(0, static_cast<int>(n));
        for (std::size_t i = 0; i < n; ++i) {
            CPunGps* point = lib.AddPun(0, false);
            const Fix fix = MakeFix(i);
            bench::Fill(*point, fix);
            Random r(i + 7);
            point->SetCoord(r.Uniform(2e5, 8e5), r.Uniform(4e6, 5e6), r.Uniform(0, 3000));
            point->SetGdop(r.Uniform(1, 5));
        }
    }

    /// The points are known to the server, under ids from 2 on in an order of their own.
    void Confirm() {
        const auto n = static_cast<std::size_t>(lib.GetPunArSize(0));
        for (std::size_t i = 0; i < n; ++i) {
            CPunGps* point = lib.GetPunAt(0, static_cast<int>(i));
            point->SetCloudId(IdOf(i));
            points.AddItemToTable(point);
        }
    }
    static long long IdOf(std::size_t i) { return 2 + static_cast<long long>(i); }

    CGpsBaseCloudTable bases;
    CGpsPntCloudTable points{&bases};
    CCloudProject project;
    CLibMap map;
    CLibGps lib;
};

/// Numbers from 0 to n - 1, shuffled.
inline std::vector<std::size_t> Shuffled(std::size_t n) {
    std::vector<std::size_t> order(n);
    for (std::size_t i = 0; i < n; ++i) order[i] = i;
    Random r(4711);
    for (std::size_t i = n; i > 1; --i) std::swap(order[i - 1], order[r.Below(i)]);
    return order;
}

}  // namespace bench
