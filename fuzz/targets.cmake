# The fuzz targets, one per reader family: every fuzz/<name>_fuzzer.cc defines
# keyasn_fuzz::Run_<name> and the libFuzzer entry point. Included by fuzz/ (the
# libFuzzer build) and by tests/ (replays and sweeps in every build).
# The tool's targets, fuzz/tools/<name>_fuzzer.cc (named tool_*), feed untrusted
# files to the command-line tool's parsers and link its library as well; the
# tool's tests replay them.
function(keyasn_fuzz_names var dir)
  file(GLOB sources CONFIGURE_DEPENDS ${dir}/*_fuzzer.cc)
  list(SORT sources)
  set(names)
  foreach(src ${sources})
    get_filename_component(name ${src} NAME_WE)
    string(REGEX REPLACE "_fuzzer$" "" name ${name})
    list(APPEND names ${name})
  endforeach()
  set(${var} ${names} PARENT_SCOPE)
endfunction()
keyasn_fuzz_names(KEYASN_FUZZ_TARGETS ${PROJECT_SOURCE_DIR}/fuzz)
keyasn_fuzz_names(KEYASN_FUZZ_TOOL_TARGETS ${PROJECT_SOURCE_DIR}/fuzz/tools)
set(KEYASN_FUZZ_SUPPORT_SOURCES
  ${PROJECT_SOURCE_DIR}/fuzz/fuzz_support.cc
  ${PROJECT_SOURCE_DIR}/fuzz/oracles.cc)
