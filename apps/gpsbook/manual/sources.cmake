target_sources(gpsbook_lib PRIVATE
  manual/BashCompletion.cpp
  manual/CommandDescription.cpp
  manual/ManPage.cpp
  manual/ZshCompletion.cpp)
