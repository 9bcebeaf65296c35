# The `docs` target: the API reference from the public headers with Doxygen, into
# <build>/docs/html, failing on any warning. Not part of `all`.
find_program(DOXYGEN_EXECUTABLE doxygen)
set(KEYASN_DOCS_DIR ${PROJECT_BINARY_DIR}/docs)
set(KEYASN_DOCS_INPUT ${PROJECT_SOURCE_DIR}/keyasn/keyasn.h)
file(STRINGS ${PROJECT_SOURCE_DIR}/keyasn/keyasn.h doc_lines REGEX "^#include \"keyasn/")
foreach(line ${doc_lines})
  string(REGEX REPLACE "^#include \"([^\"]+)\".*" "\\1" header "${line}")
  string(APPEND KEYASN_DOCS_INPUT " ${PROJECT_SOURCE_DIR}/${header}")
endforeach()
string(APPEND KEYASN_DOCS_INPUT " ${PROJECT_SOURCE_DIR}/docs/guide.md")
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${KEYASN_DOCS_DIR}/Doxyfile @ONLY)
if(DOXYGEN_EXECUTABLE)
  add_custom_target(docs
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${KEYASN_DOCS_DIR}/html
    COMMAND ${DOXYGEN_EXECUTABLE} ${KEYASN_DOCS_DIR}/Doxyfile
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    COMMENT "API reference in ${KEYASN_DOCS_DIR}/html"
    VERBATIM)
else()
  add_custom_target(docs
    COMMAND ${CMAKE_COMMAND} -E echo "doxygen not found: run scripts/docs (it installs it)"
    COMMAND ${CMAKE_COMMAND} -E false
    VERBATIM)
endif()
