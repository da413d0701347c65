# What a point and a group hold, one table each.
target_sources(gpsbook_lib PRIVATE
  fields/Assignment.cpp
  fields/FieldValue.cpp
  fields/GroupFields.cpp
  fields/NearNames.cpp
  fields/PointFields.cpp
  fields/SystemText.cpp
  fields/TextRules.cpp)
