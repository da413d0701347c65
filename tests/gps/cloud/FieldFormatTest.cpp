// Which real values of a record are lengths, angles and factors. The open host writes all of them alike: here
// it is replaced by one that writes what it was asked for.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/gps/cloud/CloudBook.h"

// In front of the host's own, which the library would call otherwise.
char* CCloudTable::ConcatDoubleValue(char* line, double, enumDoubleFormat format) {
    char* at = line + std::strlen(line);
    for (const char c : {';', 'f', static_cast<char>('0' + format)}) *at++ = c;
    *at = '\0';
    return at;
}

namespace {

using test::CloudBook;

TEST(FieldFormat, OfEveryRealValueOfAGroup) {
    CloudBook book;
    CGrpGps* group = book.AddGroup(0);
    test::FillGroup(*group);
    vex::String fields;
    book.bases.GetFields(*group, 0x1FFF, fields);
    EXPECT_EQ(fields.View(),
              "BASE 1;cod;f0;f0;f0;78;Nord;1;0;"
              "f1;f1;f0;f0;-3;"  // base: latitude, longitude, height, antenna
              "11;12;2;3;1;f0;f0;1;16;17;18;19;20;1;"
              "own;1;f0;f0;f0;f0;f0;f0;f0;f1;f1;"
              "Roma 40;0;f0;f0;f0;f0;f0;f0;f0;f1;f1;2;"
              "library;1;f0;f0;f0;f0;f0;f0;f0;f1;f1;"
              "1;f1;f1;f0;f0;f0;"    // projection
              "f1;f1;f0;f0;f2;f2;"   // origin, its counterpart, scale and angle
              "4;2;f1;f1;f0;f0;f0;"  // the height's projection
              "f0;f0;f0");           // its surface
}

TEST(FieldFormat, OfEveryRealValueOfAPoint) {
    CloudBook book;
    book.AddGroup(0);
    CPunGps* point = book.AddPoint(0, 0);
    test::FillPoint(*point);
    vex::String fields;
    book.points.GetFields(*point, 0x1FFFF, fields);
    EXPECT_EQ(fields.View(),
              "P 100;spigolo;f0;f0;f0;9;2024;5;31;86399;4;10;7;"
              "f1;f1;f0;f0;f0;f0;f0;f0;"
              "250000000;-2000000;0;1000000000;500000000;125000000");
}

}  // namespace
