# What `cmake --install` leaves behind: libraries, public headers as they stand in the tree, and the two ways to find
# them, find_package(GpsSurvey) and pkg-config gps-survey.
#
# With a platform of the host's own (GPS_PLATFORM_TARGET) only GpsSurvey::gps is exported: the headers of
# platform/ and their definitions are the host's. Whoever finds the package gets the host's target through
# GPS_PLATFORM_PACKAGE.

option(GPS_INSTALL "Install the libraries, their headers and package files" ${gps_top_level})
if(NOT GPS_INSTALL)
  return()
endif()
include(CMakePackageConfigHelpers)

set(gps_header_dir ${CMAKE_INSTALL_INCLUDEDIR}/gps-survey)
set(gps_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/GpsSurvey)

set(gps_installed gps)
set(gps_header_roots gps)
if(NOT GPS_PLATFORM_TARGET)
  list(PREPEND gps_installed gps_platform gps_host)
  list(PREPEND gps_header_roots platform)
endif()

install(TARGETS ${gps_installed} EXPORT GpsSurveyTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# Headers for the library's own sources: what they declare is not exported.
set(gps_own_headers
  cloud/CommitLine.h
  cloud/ConvCoordReply.h
  cloud/EntityFields.h
  cloud/ReplyValues.h
  cloud/TableSteps.h
  coords/TaggedText.h
  model/EntityChanges.h
  model/FindFromHint.h
  model/PointSearch.h
  options/StringResources.h
  persist/MovedUsage.h
  persist/OrNull.h
  persist/RoomFor.h)
foreach(header IN LISTS gps_own_headers)
  list(APPEND gps_not_installed PATTERN "gps/${header}" EXCLUDE)
endforeach()
foreach(root IN LISTS gps_header_roots)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/${root} DESTINATION ${gps_header_dir} FILES_MATCHING PATTERN "*.h"
    ${gps_not_installed})
endforeach()

install(EXPORT GpsSurveyTargets NAMESPACE GpsSurvey:: DESTINATION ${gps_package_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/GpsSurveyConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/GpsSurveyConfig.cmake INSTALL_DESTINATION ${gps_package_dir})
# Before 1.0 every minor version may change the interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/GpsSurveyConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/package/GpsSurveyConfig.cmake
  ${PROJECT_BINARY_DIR}/package/GpsSurveyConfigVersion.cmake
  DESTINATION ${gps_package_dir})

# The catalogue of permanent stations belongs to the open host, which finds it from its library.
if(NOT GPS_PLATFORM_TARGET)
  install(FILES ${PROJECT_SOURCE_DIR}/data/stations.csv DESTINATION ${CMAKE_INSTALL_DATADIR}/gps-survey)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/licences DESTINATION ${CMAKE_INSTALL_DATADIR}/gps-survey)
endif()

# pkg-config knows nothing of a host's own platform.
if(NOT GPS_PLATFORM_TARGET)
  file(RELATIVE_PATH gps_pc_to_prefix
    /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  string(REGEX REPLACE "/$" "" gps_pc_to_prefix ${gps_pc_to_prefix})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/gps-survey.pc.in
    ${PROJECT_BINARY_DIR}/package/gps-survey.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/gps-survey.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
