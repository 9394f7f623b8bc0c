# Options for our own code; third-party sources are built without them.
add_library(lumora_options INTERFACE)
target_include_directories(lumora_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(lumora_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  # GCC 12 warns of overlapping copies in every sum of a literal and a string, although there are none.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> $<$<CXX_COMPILER_ID:Clang>:-Wshadow>
  # The display arithmetic is bit-exact: a fused multiply-add would round once where two roundings are meant.
  -ffp-contract=off
  # Nobody reads the error numbers of mathematical functions, and without them a square root is an instruction.
  -fno-math-errno)

if(WIN32)
  # Documented Windows 10 interfaces, and none of the macros that collide with C++ names.
  target_compile_definitions(lumora_options INTERFACE
    UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX WINVER=0x0A00 _WIN32_WINNT=0x0A00)
  # Only DLLs that Windows itself ships may be imported.
  target_link_options(lumora_options INTERFACE -static
    -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va)
  # A crash report needs the names of functions and the numbers of lines.
  string(APPEND CMAKE_CXX_FLAGS_RELEASE " -g1")
  # The result contains neither the folder nor the time of the build, so that anybody can make the same bytes.
  target_compile_options(lumora_options INTERFACE
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${LUMORA_HDF5}=hdf5)
  target_link_options(lumora_options INTERFACE -Wl,--no-insert-timestamp)
endif()

# Moves the debug information of a program or DLL to symbols/ in the build folder. Its name and checksum stay in the
# program, so that a debugger finds it.
function(lumora_separate_symbols target)
  set(symbols ${PROJECT_BINARY_DIR}/symbols)
  set(file ${symbols}/$<TARGET_FILE_NAME:${target}>.debug)
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E make_directory ${symbols}
    # Without --preserve-dates the tool writes the time of day into the file's header.
    COMMAND ${CMAKE_OBJCOPY} --preserve-dates --only-keep-debug $<TARGET_FILE:${target}> ${file}
    COMMAND ${CMAKE_OBJCOPY} --preserve-dates --strip-all --add-gnu-debuglink=${file} $<TARGET_FILE:${target}>
    VERBATIM)
endfunction()

if(LUMORA_SANITIZE)
  # The numbers of lines are enough to read a report; full debug information takes as long to make as the code.
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined -fuse-ld=lld)
endif()
if(LUMORA_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link -DFUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
    -fsanitize-coverage-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/not_counted.txt)
endif()
if(LUMORA_COVERAGE)
  add_link_options(-fprofile-instr-generate)
endif()

# lumora_precompile_headers(TARGET): in builds that are for testing alone, the headers that most files include are
# compiled once. Releases do without, so a header that a file has forgotten to include is found there.
function(lumora_precompile_headers target)
  if(LUMORA_SANITIZE)
    target_precompile_headers(${target} PRIVATE
      <algorithm> <array> <cstdint> <memory> <optional> <span> <string> <string_view> <vector>)
  endif()
endfunction()
