# The options of a field book.
target_sources(gpsbook_lib PRIVATE
  options/OptionTable.cpp
  options/SettingsNote.cpp)
