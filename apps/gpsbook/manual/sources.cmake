target_sources(gpsbook_lib PRIVATE
  manual/BashCompletion.cpp
  manual/ManPage.cpp
  manual/ZshCompletion.cpp)

target_sources(gpsbook_command_line PRIVATE
  manual/CommandDescription.cpp)
