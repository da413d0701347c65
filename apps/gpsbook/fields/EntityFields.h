// EntityFields: the fields that a point and a group have as drawing entities.
#pragma once

#include <string>
#include <vector>

#include "apps/gpsbook/fields/Field.h"
#include "platform/entity/CEgn.h"

namespace gpsbook {

// Ranges. Plane systems may be in feet, and far from their origin.
inline constexpr double kLargestPlane = 1e9;      // units of the plane system
inline constexpr double kLowestHeight = -20'000;  // metres; no fix on Earth is lower
inline constexpr double kHighestHeight = 1e5;     // metres; aircraft and balloons
inline constexpr double kHighestAntenna = 100;    // metres
inline constexpr double kLargest32 = 4294967295.0;

/// A whole number as the setter of type T takes it.
template <class T>
T Whole(const FieldValue& value) {
    return static_cast<T>(std::get<std::int64_t>(value));
}

inline const std::string& Text(const FieldValue& value) { return std::get<std::string>(value); }
inline double Real(const FieldValue& value) { return std::get<double>(value); }

/// Plane coordinates: easting, northing, height of the ground mark.
template <class Item>
void AppendPlaneFields(std::vector<Field<Item>>& fields) {
    using V = FieldValue;
    fields.push_back({{"east", FieldKind::real, "plane units", -kLargestPlane, kLargestPlane, 4,
                       Feeds::nothing, "easting of the ground mark"},
                      [](Item& e) { return V(e.GetCoordX()); },
                      [](Item& e, const V& v) {
                          e.SetCoord(Real(v), e.GetCoordY(), e.GetCoordZ());
                          e.CalcolaValiditaXYZ();
                      }});
    fields.push_back({{"north", FieldKind::real, "plane units", -kLargestPlane, kLargestPlane, 4,
                       Feeds::nothing, "northing of the ground mark"},
                      [](Item& e) { return V(e.GetCoordY()); },
                      [](Item& e, const V& v) {
                          e.SetCoord(e.GetCoordX(), Real(v), e.GetCoordZ());
                          e.CalcolaValiditaXYZ();
                      }});
    fields.push_back({{"height", FieldKind::real, "metres", -kLargestPlane, kLargestPlane, 4, Feeds::nothing,
                       "height of the ground mark in the plane system"},
                      [](Item& e) { return V(e.GetCoordZ()); },
                      [](Item& e, const V& v) {
                          e.SetCoord(e.GetCoordX(), e.GetCoordY(), Real(v));
                          e.CalcolaValiditaXYZ();
                      }});
}

/// What entities have besides name, code and coordinates.
template <class Item>
void AppendEntityFields(std::vector<Field<Item>>& fields) {
    using V = FieldValue;
    const auto text = [&](const char* name, const char* help, V (*get)(Item&), void (*set)(Item&, const V&)) {
        fields.push_back({{name, FieldKind::text, "", 0, 0, 0, Feeds::nothing, help}, get, set});
    };
    const auto whole = [&](const char* name, double low, double high, const char* help, V (*get)(Item&),
                           void (*set)(Item&, const V&)) {
        fields.push_back({{name, FieldKind::whole, "", low, high, 0, Feeds::nothing, help}, get, set});
    };
    text(
        "text3", "third text of the entity", [](Item& e) { return V(e.GetTerScri()); },
        [](Item& e, const V& v) { e.SetTerScri(Text(v)); });
    text(
        "notes", "notes", [](Item& e) { return V(e.GetNote()); },
        [](Item& e, const V& v) { e.SetNote(Text(v)); });
    text(
        "photos", "names of photos", [](Item& e) { return V(e.GetNomiFoto_Raw()); },
        [](Item& e, const V& v) { e.SetNomiFoto_Raw(Text(v)); });
    text(
        "attributes", "how the entity is drawn", [](Item& e) { return V(e.GetAttribDis()); },
        [](Item& e, const V& v) { e.SetAttribDis(Text(v)); });
    whole(
        "descriptor", -2147483648.0, 2147483647, "id of its descriptor, -1 for none",
        [](Item& e) { return V(std::int64_t{e.GetIdentDescr()}); },
        [](Item& e, const V& v) { e.SetIdentDescr(Whole<int>(v)); });
    whole(
        "gis_handle", -2147483648.0, 2147483647, "handle in a GIS, 0 for none",
        [](Item& e) { return V(std::int64_t{e.GetGisHandle()}); },
        [](Item& e, const V& v) { e.SetGisHandle(Whole<int>(v)); });
    whole(
        "entity_code", 0, kLargest32, "code of the entity; 20037 keeps it without plane coordinates",
        [](Item& e) { return V(static_cast<std::int64_t>(e.GetCodeEgn() & 0xFFFFFFFFU)); },
        [](Item& e, const V& v) { e.SetCodeEgn(Whole<unsigned long>(v)); });
    whole(
        "validity", 0, kLargest32, "validity word; bits 0 and 1 follow the plane coordinates",
        [](Item& e) { return V(std::int64_t{e.GetVldtEgn()}); },
        [](Item& e, const V& v) {
            e.SetVldtEgn(Whole<std::uint32_t>(v));
            e.CalcolaValiditaXYZ();
        });
}

}  // namespace gpsbook
