// ReportJson: what is wrong with a book's file, for machines.
#pragma once

#include <nlohmann/json.hpp>

#include "host/project/DamageReport.h"

namespace gpsbook {

inline nlohmann::ordered_json DamagesJson(const gpsproject::DamageReport& report) {
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    for (const gpsproject::Damage& d : report.damages)
        all.push_back({{"section", d.section},
                       {"record", d.record.empty() ? nlohmann::ordered_json(nullptr)
                                                   : nlohmann::ordered_json(d.record)},
                       {"offset", d.offset >= 0 ? nlohmann::ordered_json(d.offset) : nullptr},
                       {"what", d.what}});
    return all;
}

}  // namespace gpsbook
