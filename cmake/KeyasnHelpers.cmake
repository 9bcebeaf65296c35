# keyasn_test(NAME SOURCES...): one GoogleTest executable registered with ctest.
# Tests see the library's internal headers and link the shared library; tests of
# internal helpers link the object library instead (see keyasn/CMakeLists.txt).
function(keyasn_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE keyasn_internal GTest::gtest GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE
    KEYASN_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    KEYASN_PROJECT_VERSION="${PROJECT_VERSION}"
    KEYASN_SHARED_DIR="${PROJECT_SOURCE_DIR}/../shared")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "KEYASN_SOURCE_DIR=${PROJECT_SOURCE_DIR}")
endfunction()
