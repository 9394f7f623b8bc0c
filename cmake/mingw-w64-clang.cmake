# clang for the same target, with the headers and libraries of the GCC cross compiler.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-libgcc-file-name OUTPUT_VARIABLE gcc_library)
cmake_path(GET gcc_library PARENT_PATH gcc_folder)
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_TARGET x86_64-w64-windows-gnu)
endforeach()
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES
  ${gcc_folder}/include/c++ ${gcc_folder}/include/c++/x86_64-w64-mingw32)
# The group reaches to the end of the command line, where clang names the libraries of GCC that need this one.
set(link_options "-L${gcc_folder} -Wl,--start-group -lpthread")
set(CMAKE_EXE_LINKER_FLAGS_INIT ${link_options})
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${link_options})
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
