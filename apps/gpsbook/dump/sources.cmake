# Takes a section apart, without the library that wrote it.
target_sources(gpsbook_lib PRIVATE
  dump/FieldPrinter.cpp
  dump/Layout.cpp
  dump/SectionBytes.cpp
  dump/SectionDecoder.cpp
  dump/SectionFile.cpp)
