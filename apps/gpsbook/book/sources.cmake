target_sources(gpsbook_lib PRIVATE
  book/EpochFilter.cpp
  book/GroupFiller.cpp
  book/Interrupt.cpp
  book/LogImport.cpp
  book/LogInput.cpp
  book/Progress.cpp)
