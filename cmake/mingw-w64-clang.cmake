# clang for the same target, with the headers and libraries of the GCC cross compiler. It compiles in half the time.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-libgcc-file-name OUTPUT_VARIABLE gcc_library)
cmake_path(GET gcc_library PARENT_PATH gcc_folder)
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_TARGET x86_64-w64-windows-gnu)
  # How GCC's library stores thread-local variables, and how it compares types. GCC itself knows this.
  set(CMAKE_${language}_FLAGS_INIT "-femulated-tls -D__GXX_TYPEINFO_EQUALITY_INLINE=0 -D__GXX_MERGED_TYPEINFO_NAMES=0")
endforeach()
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES
  ${gcc_folder}/include/c++ ${gcc_folder}/include/c++/x86_64-w64-mingw32)
# The group is not closed, so it includes the end of the command line. There clang names the libraries of GCC that need
# pthread.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld -L${gcc_folder} -Wl,--start-group -lpthread")
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
