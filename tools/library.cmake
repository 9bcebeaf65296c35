# keyasn_tool_library(NAME KEYASN_TARGET): the tool's code apart from main.cc as
# the static library NAME, built against KEYASN_TARGET (the shared library for
# the tool itself, the instrumented objects for the fuzz targets), with CLI11 and
# nlohmann-json, which nothing else needs.
set(KEYASN_TOOL_DIR ${CMAKE_CURRENT_LIST_DIR})

function(keyasn_tool_library name keyasn_target)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json 3 REQUIRED)
  set(dir ${KEYASN_TOOL_DIR})
  set(generated ${CMAKE_CURRENT_BINARY_DIR}/${name}_generated)

  # The bundled sample: samples/container.der as a byte array.
  set(sample ${PROJECT_SOURCE_DIR}/samples/container.der)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${sample})
  file(READ ${sample} sample_hex HEX)
  string(REGEX REPLACE "(..)" "0x\\1," KEYASN_SAMPLE_OCTETS "${sample_hex}")
  configure_file(${dir}/bundled_sample.cc.in ${generated}/bundled_sample.cc @ONLY)

  # The page of the view command: tools/view_page.html as a string.
  set(view_page ${dir}/view_page.html)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${view_page})
  file(READ ${view_page} KEYASN_VIEW_PAGE)
  configure_file(${dir}/view_page.cc.in ${generated}/view_page.cc @ONLY)

  set(sources
    commands.cc common.cc der_walk.cc dump.cc dump_stream.cc header_octets.cc input.cc json_text.cc lint.cc
    lint_command.cc lint_header.cc lint_strings.cc lint_times.cc lint_values.cc load.cc locate.cc
    oid_config.cc oid_names.cc output.cc type_check.cc types.cc value_encode.cc version.cc
    der_json.cc
    types_common.cc types_keys.cc types_records.cc types_token.cc values.cc view.cc
    html_page.cc view_command.cc)
  list(TRANSFORM sources PREPEND ${dir}/)
  add_library(${name} STATIC ${sources}
    ${generated}/bundled_sample.cc ${generated}/view_page.cc)
  target_include_directories(${name} PUBLIC ${dir})
  target_link_libraries(${name} PUBLIC ${keyasn_target} CLI11::CLI11 nlohmann_json::nlohmann_json)
endfunction()
