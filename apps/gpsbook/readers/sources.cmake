target_sources(gpsbook_lib PRIVATE
  readers/Calendar.cpp
  readers/Epoch.cpp
  readers/FieldText.cpp
  readers/Format.cpp
  readers/Grades.cpp
  readers/LeapSeconds.cpp
  readers/LocalFrame.cpp
  readers/NmeaEpochs.cpp
  readers/NmeaReader.cpp
  readers/NmeaSentence.cpp
  readers/PosHeader.cpp
  readers/PosReader.cpp)
