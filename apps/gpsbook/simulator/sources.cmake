# The simulated receiver.
target_sources(gpsbook_lib PRIVATE
  simulator/EpochGenerator.cpp
  simulator/NmeaText.cpp
  simulator/PosText.cpp
  simulator/SimulationOptions.cpp
  simulator/Simulator.cpp)
