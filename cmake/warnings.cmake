# Warning set and library flags shared by every target of the project.
add_library(corvane_warnings INTERFACE)
target_compile_options(corvane_warnings INTERFACE
  -Wall -Wextra -Wshadow -Wconversion -Wno-sign-conversion
  $<$<BOOL:${CORVANE_WERROR}>:-Werror>)

# Flags of the three libraries: no exceptions or RTTI cross the C interface,
# and only the names marked for export are visible.
function(corvane_library target)
  target_link_libraries(${target} PRIVATE corvane_warnings)
  # Calls between a library's own exported functions go direct, not through the PLT.
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti>
    -fno-semantic-interposition)
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    C_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    INSTALL_RPATH "$ORIGIN"  # the libraries find each other where they are installed
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/source>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/corvane>)
endfunction()
