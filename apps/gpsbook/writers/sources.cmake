# The table writers. CSV and KML are ours, the others go through GDAL, where it is wanted and found.
target_sources(gpsbook_lib PRIVATE
  writers/Columns.cpp
  writers/CsvWriter.cpp
  writers/KmlWriter.cpp
  writers/RowWriter.cpp
  writers/StagedOutput.cpp
  writers/TableText.cpp
  writers/TextOutput.cpp)

set(gpsbook_gdal OFF)
if(GPS_WITH_GDAL)
  find_package(GDAL 3.6 QUIET)
  if(GDAL_FOUND)
    set(gpsbook_gdal ON)
    # Seen from the tests as well, which link the library in another folder.
    get_target_property(gpsbook_gdal_global GDAL::GDAL IMPORTED_GLOBAL)
    if(NOT gpsbook_gdal_global)
      set_target_properties(GDAL::GDAL PROPERTIES IMPORTED_GLOBAL TRUE)
    endif()
    target_sources(gpsbook_lib PRIVATE
      writers/CheckedFiles.cpp
      writers/OgrPlan.cpp
      writers/OgrWriter.cpp)
    target_compile_definitions(gpsbook_lib PUBLIC GPSBOOK_WITH_GDAL)
    target_link_libraries(gpsbook_lib PRIVATE GDAL::GDAL)
  endif()
endif()
message(STATUS "gpsbook writes GIS and CAD formats: ${gpsbook_gdal}")
