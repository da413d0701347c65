// Records: commit texts and replies for tests, written out as they are sent.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/project/CloudMessages.h"

namespace test {

/// What the map library has in the conversion below: the datum selected, then type and datum of its own.
inline const std::string kSelected = "Lib;0;1;2;3;4;5;6;7;NULLVAL;NULLVAL";
inline const std::string kLibrary = "3;Map;1;0.5;0;0;0;0;0;0;1;2";

/// The 70 fields of a conversion, or 59 when `selected` is empty.
inline std::string Conversion(const std::string& selected = kSelected, const std::string& library = kLibrary,
                              const std::string& place = "0;0;0", const std::string& first = "1") {
    return first + ";2;" + place +
           ";6378137;298.257223563;1;6;7;8;9;10;2;"
           "Rome;1;-104.1;-49.1;-9.9;0.971;-2.917;0.714;-11.68;41.9;12.45;" +
           (selected.empty() ? "" : selected + ";") + library +
           ";4;0;9;0.9996;5e+05;0;45;9;1000;2000;1;0;5;1;0;0;0;0;0;1.5;0.001;-0.002";
}

/// Fields 2 to 15 of a group.
inline std::string GroupFields(const std::string& name) {
    return name + ";base;100.5;200.25;30;7;Site;1;0;45.5;9.25;120.75;2;-3";
}

inline std::string Group(const std::string& name = "B1", const std::string& conversion = Conversion()) {
    return "IBAS;" + GroupFields(name) + ";" + conversion;
}

/// Fields 2 to 28 of a point.
inline std::string PointFields(const std::string& name) {
    return name +
           ";code;1.5;2.5;3.5;9;2024;5;31;43200;4;8;5;45.1;9.2;101.25;1.8;1.5;2.25;0.01;0.02;1;2;3;4;5;6";
}

inline std::string Point(long long parent, const std::string& name = "P1") {
    return "IPTGPS;" + std::to_string(parent) + ";" + PointFields(name);
}

inline std::string Records(const std::vector<std::string>& records) {
    std::string text;
    for (const std::string& record : records) text += (text.empty() ? "" : "\r\n") + record;
    return text;
}

/// A commit of a book that knows `base`, and has sent nothing since.
inline gpsproject::CloudCommit Commit(std::string id, std::int64_t base, std::string records) {
    return {std::move(id), base, {}, {}, std::move(records)};
}

/// The fields of a reply, joined by ';'.
inline std::string Text(const gpsproject::CloudReply& reply) {
    std::string text;
    for (const vex::String& field : reply.fields) {
        if (&field != &reply.fields.front()) text += ';';
        text += field.View();
    }
    return text;
}

}  // namespace test
