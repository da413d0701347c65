#include "apps/gpsbook/writers/KmlWriter.h"

#include <gtest/gtest.h>

#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook {
namespace {

TEST(KmlWriter, WritesTheseBytes) {
    const TestFolder folder;
    PointRow row = FullRow();
    row.name = "a<b>&\x01";
    KmlWriter writer({folder / "t.kml", false, nullptr});
    writer.Write(row);
    writer.Write(BareRow());
    writer.Close();
    EXPECT_EQ(ReadFile(folder / "t.kml"), R"(<?xml version="1.0" encoding="UTF-8"?>
<kml xmlns="http://www.opengis.net/kml/2.2">
<Document>
<name>points</name>
<Schema name="points" id="points">
<SimpleField type="string" name="group"/>
<SimpleField type="string" name="code"/>
<SimpleField type="double" name="lat"/>
<SimpleField type="double" name="lon"/>
<SimpleField type="double" name="h"/>
<SimpleField type="double" name="antenna"/>
<SimpleField type="double" name="east"/>
<SimpleField type="double" name="north"/>
<SimpleField type="double" name="height"/>
<SimpleField type="int" name="quality"/>
<SimpleField type="int" name="gps"/>
<SimpleField type="int" name="glonass"/>
<SimpleField type="double" name="pdop"/>
<SimpleField type="double" name="hrms"/>
<SimpleField type="double" name="vrms"/>
</Schema>
<Placemark>
<name>a&lt;b&gt;&amp;?</name>
<TimeStamp><when>2018-10-04T12:37:51.123Z</when></TimeStamp>
<ExtendedData><SchemaData schemaUrl="#points">
<SimpleData name="group">Grüppe 1</SimpleData>
<SimpleData name="code">čep,x</SimpleData>
<SimpleData name="lat">45.123456789</SimpleData>
<SimpleData name="lon">11.987654321</SimpleData>
<SimpleData name="h">123.4567</SimpleData>
<SimpleData name="antenna">2.0000</SimpleData>
<SimpleData name="east">733000.1234</SimpleData>
<SimpleData name="north">5001000.9876</SimpleData>
<SimpleData name="height">80.4321</SimpleData>
<SimpleData name="quality">4</SimpleData>
<SimpleData name="gps">8</SimpleData>
<SimpleData name="glonass">5</SimpleData>
<SimpleData name="pdop">1.25</SimpleData>
<SimpleData name="hrms">0.0123</SimpleData>
<SimpleData name="vrms">0.0456</SimpleData>
</SchemaData></ExtendedData>
<Point><altitudeMode>absolute</altitudeMode><coordinates>11.987654321,45.123456789,123.4567</coordinates></Point>
</Placemark>
<Placemark>
<name>bare</name>
<ExtendedData><SchemaData schemaUrl="#points">
<SimpleData name="quality">0</SimpleData>
<SimpleData name="gps">0</SimpleData>
<SimpleData name="glonass">0</SimpleData>
</SchemaData></ExtendedData>
</Placemark>
</Document>
</kml>
)");
}

}  // namespace
}  // namespace gpsbook
