# How every target of the project is compiled. gps_compile(<target>) is called once per target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

option(GPS_WERROR "Treat warnings as errors (development presets)" OFF)
set(GPS_SANITIZE "" CACHE STRING "Sanitizers to compile with, for example address,undefined")

# Installed files find each other wherever the tree is moved to.
file(RELATIVE_PATH gps_bin_to_lib
  /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
set(CMAKE_INSTALL_RPATH "$ORIGIN" "$ORIGIN/${gps_bin_to_lib}")

add_library(gps_flags INTERFACE)
target_compile_options(gps_flags INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Woverloaded-virtual
  -ffp-contract=off)  # the same figures on every machine
if(GPS_WERROR)
  target_compile_options(gps_flags INTERFACE -Werror)
endif()
if(GPS_SANITIZE)
  target_compile_options(gps_flags INTERFACE -fsanitize=${GPS_SANITIZE} -fno-sanitize-recover=all
                         -fno-omit-frame-pointer)
  target_link_options(gps_flags INTERFACE -fsanitize=${GPS_SANITIZE})
endif()

include(CheckIPOSupported)
check_ipo_supported(RESULT gps_ipo OUTPUT gps_ipo_why LANGUAGES CXX)

# For tests and the program: compiled quickly in development builds, where the libraries alone are optimised.
function(gps_compile_quickly target)
  target_compile_options(${target} PRIVATE $<$<CONFIG:RelWithDebInfo,Debug>:-O0>)
endfunction()

# The same headers again and again cost a third of the time of a build of everything. A build without this option
# shows whether each file includes what it needs.
option(GPS_PRECOMPILE "Precompile the headers that tests and the program use most" OFF)

function(gps_compile target)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:gps_flags>)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "SHARED_LIBRARY" AND gps_ipo)
    set_target_properties(${target} PROPERTIES INTERPROCEDURAL_OPTIMIZATION_RELEASE ON)
  endif()
  if(type STREQUAL "SHARED_LIBRARY")
    # Calls inside a library are bound inside it: they can be inlined, and cost no table look-up.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition -fno-plt)
    target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions)
    set_target_properties(${target} PROPERTIES
      CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
      VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  endif()
endfunction()
