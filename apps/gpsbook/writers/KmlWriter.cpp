#include "apps/gpsbook/writers/KmlWriter.h"

#include <string_view>

#include "apps/gpsbook/writers/Columns.h"
#include "apps/gpsbook/writers/TableText.h"

namespace gpsbook {

namespace {

/// Name and time have elements of their own.
bool IsExtended(const Column& column) {
    return std::string_view(column.name) != "name" && !std::holds_alternative<TimeMember>(column.value);
}

const char* TypeOf(const Column& column) {
    if (std::holds_alternative<NumberMember>(column.value)) return "double";
    return std::holds_alternative<CountMember>(column.value) ? "int" : "string";
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : CleanText(text)) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

}  // namespace

KmlWriter::KmlWriter(const RowOutput& output) : out_(output) {
    out_.Append(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<kml xmlns=\"http://www.opengis.net/kml/2.2\">\n"
        "<Document>\n"
        "<name>points</name>\n"
        "<Schema name=\"points\" id=\"points\">\n");
    for (const Column& column : kColumns) {
        if (!IsExtended(column)) continue;
        out_.Append(std::string("<SimpleField type=\"") + TypeOf(column) + "\" name=\"" + column.name +
                    "\"/>\n");
    }
    out_.Append("</Schema>\n");
}

void KmlWriter::Write(const PointRow& row) {
    std::string mark = "<Placemark>\n<name>" + Escaped(row.name) + "</name>\n";
    if (HasTime(row)) mark += "<TimeStamp><when>" + TimeText(row) + "</when></TimeStamp>\n";
    mark += "<ExtendedData><SchemaData schemaUrl=\"#points\">\n";
    for (const Column& column : kColumns) {
        const std::string value = Escaped(CellText(row, column));
        if (!IsExtended(column) || value.empty()) continue;
        mark += std::string("<SimpleData name=\"") + column.name + "\">" + value + "</SimpleData>\n";
    }
    mark += "</SchemaData></ExtendedData>\n";
    if (HasValue(row.lon) && HasValue(row.lat) && HasValue(row.h)) {
        mark += "<Point><altitudeMode>absolute</altitudeMode><coordinates>" +
                FixedText(row.lon, kDegreeDecimals) + ',' + FixedText(row.lat, kDegreeDecimals) + ',' +
                FixedText(row.h, kMetreDecimals) + "</coordinates></Point>\n";
    }
    out_.Append(mark + "</Placemark>\n");
}

void KmlWriter::Close() {
    out_.Append("</Document>\n</kml>\n");
    out_.Close();
}

}  // namespace gpsbook
