# Permanent stations, and the frames of bases.
target_sources(gpsbook_lib PRIVATE
  stations/BaseFrame.cpp
  stations/StationLint.cpp
  stations/StationText.cpp
  stations/UsedStations.cpp)
