# lumora_may_include(TARGET FOLDER LAYER...): the build of TARGET fails if a source file in FOLDER includes a file of
# any other layer. A folder "linux" in FOLDER has a rule of its own.
function(lumora_may_include target folder)
  cmake_path(GET folder FILENAME name)
  set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${target}_${name}.includes)
  file(GLOB_RECURSE files CONFIGURE_DEPENDS ${folder}/*.h ${folder}/*.cpp)
  string(REPLACE ";" " " layers "${ARGN}")
  add_custom_command(OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -D FOLDER=${folder} -D "MAY_INCLUDE=${layers}" -P ${PROJECT_SOURCE_DIR}/cmake/CheckIncludes.cmake
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${files} ${PROJECT_SOURCE_DIR}/cmake/CheckIncludes.cmake
    COMMENT "Checking what ${target} includes"
    VERBATIM)
  add_custom_target(${target}_${name}_includes DEPENDS ${stamp})
  add_dependencies(${target} ${target}_${name}_includes)
endfunction()
