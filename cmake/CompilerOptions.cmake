# Options for our own code; third-party sources are built without them.
add_library(lumora_options INTERFACE)
target_include_directories(lumora_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(lumora_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Werror
  # GCC 12 sees overlapping copies in every sum of a literal and a string.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> $<$<CXX_COMPILER_ID:Clang>:-Wshadow>
  # The display arithmetic is bit-exact: a fused multiply-add would round once where two roundings are meant.
  -ffp-contract=off)

if(WIN32)
  # Documented Windows 10 interfaces, and none of the macros that collide with C++ names.
  target_compile_definitions(lumora_options INTERFACE
    UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX WINVER=0x0A00 _WIN32_WINNT=0x0A00)
  # Only DLLs that Windows itself ships may be imported.
  target_link_options(lumora_options INTERFACE -static $<$<CONFIG:Release>:-s>
    -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va)
endif()

if(LUMORA_SANITIZE)
  add_compile_options(-fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
