# Installation: headers under include/corvane/{pb,rfc,mime}, the shared libraries, a
# CMake package (find_package(corvane) gives corvane::pb, corvane::rfc and corvane::mime) and
# pkg-config files.
include(CMakePackageConfigHelpers)

set(CORVANE_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/corvane)

set_target_properties(corvane-pb PROPERTIES EXPORT_NAME pb)
set_target_properties(corvane-rfc PROPERTIES EXPORT_NAME rfc)
set_target_properties(corvane-mime PROPERTIES EXPORT_NAME mime)
install(TARGETS corvane-pb EXPORT corvaneTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/corvane/pb)
install(TARGETS corvane-rfc EXPORT corvaneTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/corvane/rfc)
install(TARGETS corvane-mime EXPORT corvaneTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/corvane/mime)

# The header-only C++ interface beside the C headers.
install(FILES ${PROJECT_SOURCE_DIR}/source/mime/mime.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/corvane/mime)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/source/mime/cpp/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/corvane/mime/cpp
  FILES_MATCHING PATTERN "*.hpp")

install(EXPORT corvaneTargets NAMESPACE corvane:: DESTINATION ${CORVANE_INSTALL_CMAKEDIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/corvaneConfig.cmake.in
  ${PROJECT_BINARY_DIR}/corvaneConfig.cmake INSTALL_DESTINATION ${CORVANE_INSTALL_CMAKEDIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/corvaneConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/corvaneConfig.cmake ${PROJECT_BINARY_DIR}/corvaneConfigVersion.cmake
  DESTINATION ${CORVANE_INSTALL_CMAKEDIR})

file(RELATIVE_PATH CORVANE_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(lib pb rfc mime)
  set(CORVANE_PC_NAME corvane-${lib})
  if(lib STREQUAL "mime")
    set(CORVANE_PC_REQUIRES "corvane-pb corvane-rfc")
    set(CORVANE_PC_DESCRIPTION "MIME entities, header fields and multipart bodies")
  elseif(lib STREQUAL "rfc")
    set(CORVANE_PC_REQUIRES "corvane-pb")
    set(CORVANE_PC_DESCRIPTION "Codecs: base64 and quoted-printable with option objects")
  else()
    set(CORVANE_PC_REQUIRES "")
    set(CORVANE_PC_DESCRIPTION "Base object runtime: objects, strings, buffers, dictionaries, stores, charsets")
  endif()
  configure_file(${CMAKE_CURRENT_LIST_DIR}/corvane.pc.in ${PROJECT_BINARY_DIR}/corvane-${lib}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/corvane-${lib}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
