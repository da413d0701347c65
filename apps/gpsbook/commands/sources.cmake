target_sources(gpsbook_lib PRIVATE
  commands/Convert.cpp
  commands/ConvertSummary.cpp
  commands/Program.cpp
  commands/Simulate.cpp)
