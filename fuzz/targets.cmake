# The fuzz targets, one per reader family: every fuzz/<name>_fuzzer.cc defines
# keyasn_fuzz::Run_<name> and the libFuzzer entry point. Included by fuzz/ (the
# libFuzzer build) and by tests/ (replays and sweeps in every build).
file(GLOB _keyasn_fuzz_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*_fuzzer.cc)
list(SORT _keyasn_fuzz_sources)
set(KEYASN_FUZZ_TARGETS)
foreach(_src ${_keyasn_fuzz_sources})
  get_filename_component(_name ${_src} NAME_WE)
  string(REGEX REPLACE "_fuzzer$" "" _name ${_name})
  list(APPEND KEYASN_FUZZ_TARGETS ${_name})
endforeach()
set(KEYASN_FUZZ_SUPPORT_SOURCES
  ${PROJECT_SOURCE_DIR}/fuzz/fuzz_support.cc
  ${PROJECT_SOURCE_DIR}/fuzz/oracles.cc)
