# `docs`: an HTML reference of the public C headers, when Doxygen is installed
# (build/<preset>/docs/html/index.html). The header comments are the reference.
find_package(Doxygen QUIET)
if(DOXYGEN_FOUND)
  set(DOXYGEN_PROJECT_NAME "corvane mime")
  set(DOXYGEN_PROJECT_BRIEF "MIME entities, header fields and multipart bodies for C and C++")
  set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
  set(DOXYGEN_FILE_PATTERNS *.h)
  set(DOXYGEN_OPTIMIZE_OUTPUT_FOR_C YES)
  set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
  set(DOXYGEN_EXTRACT_ALL YES)
  set(DOXYGEN_GENERATE_LATEX NO)
  set(DOXYGEN_FULL_PATH_NAMES NO)
  set(DOXYGEN_WARN_IF_UNDOCUMENTED NO)
  set(DOXYGEN_QUIET YES)
  # The declaration macros expand, so that every generated function is listed;
  # the library-internal names (three underscores) are left out.
  set(DOXYGEN_MACRO_EXPANSION YES)
  set(DOXYGEN_SEARCH_INCLUDES YES)
  set(DOXYGEN_INCLUDE_PATH ${PROJECT_SOURCE_DIR}/source)
  set(DOXYGEN_PREDEFINED "PB_NOEXCEPT=" "PB_BEGIN_DECLS=" "PB_END_DECLS=" "PB_API=" "RFC_API=" "MIME_API="
    "PB_NORETURN=")
  set(DOXYGEN_EXCLUDE_SYMBOLS "*___*")
  set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${PROJECT_SOURCE_DIR}/README.md)
  doxygen_add_docs(docs ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/source/pb
    ${PROJECT_SOURCE_DIR}/source/rfc ${PROJECT_SOURCE_DIR}/source/mime
    COMMENT "HTML reference of the public headers")
endif()
