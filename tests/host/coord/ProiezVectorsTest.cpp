// PROJ's own table of inputs and expected outputs, as far as the typed projections can express its
// operations.
#include <gtest/gtest.h>
#include <proj.h>

#include <charconv>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>

#include "platform/coord/CProiezPla.h"
#include "tests/host/coord/CsvTable.h"
#include "tests/host/coord/Values.h"

namespace {

using namespace gpstest;

using Parameters = std::map<std::string, std::string>;

Parameters Parse(const std::string& operation) {
    Parameters all;
    std::istringstream in(operation);
    std::string word;
    while (in >> word) {
        if (word[0] == '+') word.erase(0, 1);
        const std::size_t eq = word.find('=');
        all[word.substr(0, eq)] = eq == std::string::npos ? "" : word.substr(eq + 1);
    }
    return all;
}

// Degrees, plain or in degrees, minutes and seconds.
double Degrees(const std::string& text) { return proj_dmstor(text.c_str(), nullptr) / kRad; }

bool SetEllipsoid(const Parameters& all, CProiezPla& p) {
    static const std::map<std::string, std::pair<double, double>> named = {
        {"GRS80", {6378137.0, 298.257222101}},
        {"clrk66", {6378206.4, 294.97869821389821}},
        {"sphere", {6370997.0, 0}}};
    const auto get = [&all](const char* key) { return all.count(key) ? ToNumber(all.at(key)) : 0; };
    double a = 6378137.0, rf = 298.257222101;
    if (all.count("ellps")) {
        const auto found = named.find(all.at("ellps"));
        if (found == named.end()) return false;
        a = found->second.first;
        rf = found->second.second;
    }
    if (all.count("R")) {
        a = get("R");
        rf = 0;
    }
    if (all.count("a")) a = get("a");
    if (all.count("rf")) rf = get("rf");
    if (all.count("f")) rf = 1 / get("f");
    if (all.count("b")) rf = a / (a - get("b"));
    p.SetEllissoide(a, rf);
    return true;
}

// The projection of an operation; none when a type and five values cannot say it.
std::optional<CProiezPla> Express(const std::string& operation) {
    static const std::set<std::string> understood = {"proj",  "ellps", "R",     "a",   "b",   "rf",
                                                     "f",     "zone",  "south", "k",   "k_0", "lat_0",
                                                     "lon_0", "lat_1", "lat_2", "x_0", "y_0", "algo"};
    const Parameters all = Parse(operation);
    for (const auto& [key, value] : all)
        if (!understood.count(key)) return std::nullopt;
    if (all.count("algo") && all.at("algo") != "poder_engsager") return std::nullopt;
    const auto get = [&all](const char* key, double otherwise) {
        return all.count(key) ? Degrees(all.at(key)) : otherwise;
    };
    const auto number = [&all](const char* key, double otherwise) {
        return all.count(key) ? ToNumber(all.at(key)) : otherwise;
    };
    CProiezPla p;
    if (!all.count("proj") || !SetEllipsoid(all, p)) return std::nullopt;
    const std::string& proj = all.at("proj");
    const double k = number("k_0", number("k", 1)), fe = number("x_0", 0), fn = number("y_0", 0);
    const CProiezPla::Values five = {get("lat_0", 0), get("lon_0", 0), fe, fn, k};
    if (proj == "utm") {
        p.Set(TpProiezPla::mercatoreTrasversa,
              {0, 6 * number("zone", 0) - 183, 500000, all.count("south") ? 1e7 : 0, 0.9996});
    } else if (proj == "tmerc" || proj == "etmerc") {
        p.Set(TpProiezPla::mercatoreTrasversa, five);
    } else if (proj == "stere") {
        p.Set(TpProiezPla::stereografica, five);
    } else if (proj == "sterea") {
        p.Set(TpProiezPla::stereograficaObliqua, five);
    } else if (proj == "lcc" && all.count("lat_2") && k == 1) {
        if (!p.SetLambert2SP(five[0], five[1], get("lat_1", 0), get("lat_2", 0), fe, fn)) return std::nullopt;
    } else {
        return std::nullopt;
    }
    return p;
}

// "0.1 mm" or "0.1mm" in metres.
double Tolerance(const std::string& text) {
    static const std::map<std::string, double> units = {
        {"m", 1}, {"cm", 1e-2}, {"mm", 1e-3}, {"um", 1e-6}, {"nm", 1e-9}};
    double number = 0;
    const char* const end = text.data() + text.size();
    const char* at = std::from_chars(text.data(), end, number).ptr;
    while (at < end && *at == ' ') ++at;
    return number * units.at(std::string(at, end));
}

void CheckRow(const CsvRow& row, const CProiezPla& p) {
    const std::string name = row.Text("id") + " " + row.Text("operation") + " " + row.Text("direction");
    // A rounding of the coordinates comes on top of what the tables ask of PROJ itself.
    const double tolerance = Tolerance(row.Text("tolerance")) + 2e-8;
    Triple t;
    if (row.Text("direction") == "forward") {
        ASSERT_TRUE(p.GrafToPlan(Degrees(row.Text("in2")), Degrees(row.Text("in1")), 0, t.a, t.b, t.c))
            << name;
        EXPECT_LE(std::hypot(t.a - row.Number("out1"), t.b - row.Number("out2")), tolerance) << name;
        return;
    }
    ASSERT_TRUE(p.PlanToGraf(row.Number("in1"), row.Number("in2"), 0, t.a, t.b, t.c)) << name;
    const double lat = Degrees(row.Text("out2")), dLon = std::remainder(t.b - Degrees(row.Text("out1")), 360);
    EXPECT_LE(std::hypot(t.a - lat, dLon * std::cos(lat * kRad)) * 111320, tolerance) << name;
}

TEST(ProiezVectorsTest, EveryVectorThatATypeExpressesHolds) {
    const CsvTable table(DataPath("geodesy/proj_gie_vectors.csv"));
    std::map<std::string, int> used;
    int all = 0;
    for (const CsvRow& row : table.Rows()) {
        const std::optional<CProiezPla> p = Express(row.Text("operation"));
        if (!p) continue;
        CheckRow(row, *p);
        ++used[Parse(row.Text("operation"))["proj"]];
        ++all;
    }
    std::string summary;
    for (const auto& [proj, count] : used) summary += proj + " " + std::to_string(count) + "  ";
    RecordProperty("rows", summary);
    EXPECT_GE(used["tmerc"], 58) << summary;
    EXPECT_GE(used["etmerc"], 12) << summary;
    EXPECT_GE(used["utm"], 14) << summary;
    EXPECT_GE(used["lcc"], 20) << summary;
    EXPECT_GE(used["stere"], 18) << summary;
    EXPECT_GE(used["sterea"], 32) << summary;
    EXPECT_GE(all, 150) << summary;
}

}  // namespace
