// CloudBook: a field book in a cloud project with the tables of the library, and one group and one point
// whose every field has a value of its own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/CGpsPntCloudTable.h"
#include "gps/model/CLibGps.h"
#include "platform/coord/CLibMap.h"
#include "platform/entity/CCloudProject.h"

namespace test {

struct BaseTable : CGpsBaseCloudTable {
    using CGpsBaseCloudTable::ConcatConvCoord;
    using CGpsBaseCloudTable::ConcatDatumConv;
    using CGpsBaseCloudTable::SetConvCoord;
    using CGpsBaseCloudTable::SetDatumConv;
};

struct PntTable : CGpsPntCloudTable {
    using CGpsPntCloudTable::CGpsPntCloudTable;
    using CGpsPntCloudTable::ConcatCovarianceValue;
};

/// Tables, project and book in the order in which a host makes them.
struct CloudBook {
    explicit CloudBook(long long drawing = 0) : lib(&project, nullptr, nullptr, &map, drawing) {
        project.SetGpsTables(&bases, &points);
        bases.SetOwner(&lib);
        points.SetOwner(&lib);
        lib.AddListener([this](int code, int value, auto* data) {
            ++notified;
            notedRight = notedRight && code == 1 && value == 1 && !data;
        });
    }
    ~CloudBook() {
        bases.SetOwner(nullptr);
        points.SetOwner(nullptr);
    }
    CloudBook(const CloudBook&) = delete;
    CloudBook& operator=(const CloudBook&) = delete;

    /// A group at the end, known under an id; a new one for 0.
    CGrpGps* AddGroup(long long id, const std::string& name = "") {
        CGrpGps* group = lib.AddGrp(false);
        group->SetNome(name);
        Register(bases, *group, id);
        return group;
    }
    CPunGps* AddPoint(int g, long long id, const std::string& name = "") {
        CPunGps* point = lib.AddPun(g, false);
        point->SetNome(name);
        Register(points, *point, id);
        return point;
    }

    std::string Changes(CCloudTable& table) {
        vex::String records("of the last commit");
        table.GenerateCommitString_Change(records);
        return std::string(records.View());
    }
    std::string Additions(CCloudTable& table, int counter = 0) {
        vex::String records("of the last commit");
        table.GenerateCommitString_Add(counter, records);
        lastCounter = counter;
        return std::string(records.View());
    }

    BaseTable bases;
    PntTable points{&bases};
    CCloudProject project;
    CLibMap map;
    CLibGps lib;
    int notified = 0;
    bool notedRight = true;  // every notification was (1, 1) without payload
    int lastCounter = 0;

private:
    static void Register(CCloudTable& table, CCloudItem& item, long long id) {
        if (id < 1) return;
        item.SetCloudId(id);
        table.AddItemToTable(&item);
    }
};

// --- texts -------------------------------------------------------------------------------------------------

using Reply = std::vector<vex::String>;

inline Reply Split(std::string_view text) {
    Reply fields;
    for (std::size_t at = 0;;) {
        const std::size_t next = text.find(';', at);
        fields.emplace_back(text.substr(at, next - at));
        if (next == std::string_view::npos) return fields;
        at = next + 1;
    }
}

inline std::string Join(const Reply& fields, std::size_t from = 0) {
    std::string text;
    for (std::size_t i = from; i < fields.size(); ++i)
        text.append(i > from ? ";" : "").append(fields[i].View());
    return text;
}

inline std::vector<std::string> Lines(const std::string& records) {
    std::vector<std::string> lines;
    if (records.empty()) return lines;
    for (std::size_t at = 0;;) {
        const std::size_t next = records.find("\r\n", at);
        lines.push_back(records.substr(at, next - at));
        if (next == std::string::npos) return lines;
        at = next + 2;
    }
}

// --- a group and a point, written by hand as a record has them, by change bit -------------------------

using Written = std::vector<std::pair<std::uint32_t, std::string>>;

inline const std::string kDatumOwn = "own;1;0.1;0.2;0.3;0.4;0.5;0.6;0.7;41.5;12.5";
inline const std::string kDatumSelected = "Roma 40;0;1.1;1.2;1.3;1.4;1.5;1.6;1.7;42.5;13.5";
inline const std::string kDatumLibrary = "library;1;2.1;2.2;2.3;2.4;2.5;2.6;2.7;43.5;14.5";

/// 70 fields: settings S1 to S5, R1, R2, B, S6 to S10, type; three datums, the library's type before the
/// last; projection, local part (its origin is not set), height part. 500000 is shortest as 5e+05.
inline const std::string kConversion =
    "11;12;2;3;1;6378200.5;298.5;1;16;17;18;19;20;1;" + kDatumOwn + ";" + kDatumSelected + ";2;" +
    kDatumLibrary +
    ";1;0.5;9;5e+05;-12.5;0.9996;NULLVAL;NULLVAL;1000.5;2000.5;1.0001;0.25;"
    "4;2;44.5;11.5;600100;100;0.9999;0.5;0.001;-0.002";

inline const Written kGroup = {{0x1, "BASE 1"},      {0x2, "cod"},   {0x4, "100.5;200.25;-12.125"},
                               {0x8, "78"},          {0x10, "Nord"}, {0x20, "1"},
                               {0x40, "0"},          {0x80, "45.5"}, {0x100, "9.25"},
                               {0x200, "120.75"},    {0x400, "1.8"}, {0x800, "-3"},
                               {0x1000, kConversion}};

inline const Written kPoint = {{0x1, "P 100"},
                               {0x2, "spigolo"},
                               {0x4, "1.5;2.5;3.5"},
                               {0x8, "9"},
                               {0x10, "2024;5;31;86399"},
                               {0x20, "4"},
                               {0x40, "10"},
                               {0x80, "7"},
                               {0x100, "45.123456789"},
                               {0x200, "-9.25"},
                               {0x400, "NULLVAL"},
                               {0x800, "2"},
                               {0x1000, "1.25"},
                               {0x2000, "2.25"},
                               {0x4000, "0.011"},
                               {0x8000, "0.022"},
                               {0x10000, "250000000;-2000000;0;1000000000;500000000;125000000"}};

/// The fields of the bits of a mask, each with its ";" in front.
inline std::string Fields(const Written& written, std::uint32_t mask) {
    std::string text;
    for (const auto& [bit, fields] : written)
        if (mask & bit) text += ";" + fields;
    return text;
}

inline Reply GroupReply(const std::string& id = "7", const std::string& creator = "55") {
    return Split(id + ";" + creator + Fields(kGroup, 0x1FFF));
}
inline Reply PointReply(const std::string& id = "8", const std::string& group = "7") {
    return Split(id + ";" + group + Fields(kPoint, 0x1FFFF));
}

/// Gives a group, and the map library of its conversion, the values above.
void FillGroup(CGrpGps& group);
void FillPoint(CPunGps& point);

}  // namespace test
