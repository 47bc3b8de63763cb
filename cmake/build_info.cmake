# Values that the module records and version texts carry, supplied by the build.
# SOURCE_DATE_EPOCH, when set, fixes the build time for reproducible builds.
string(TIMESTAMP CORVANE_BUILD_TIME "UTC %Y-%m-%d %H:%M:%S (%A)" UTC)
set(CORVANE_PRODUCT_NAME "corvane")
set(CORVANE_BUILD_PLATFORM "${CMAKE_SYSTEM_NAME}")
set(CORVANE_BUILD_ARCH "${CMAKE_SYSTEM_PROCESSOR}")
set(CORVANE_BUILD_TYPE "${CMAKE_BUILD_TYPE}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/corvane_build_info.h.in
               ${PROJECT_BINARY_DIR}/generated/corvane_build_info.h @ONLY)
