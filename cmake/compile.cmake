# How everything in this tree is compiled.
find_package(Threads REQUIRED)

# The queue needs an atomic swap of 16 bytes. On x86-64 it is an extension of the first processors; 64-bit ARM has it.
if(NOT CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
  add_compile_options(-mcx16)
endif()

# Keeps the path of the tree out of the binaries.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)

set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

if(ORVA_SANITIZE)
  # A report only needs the line numbers of the debug information.
  add_compile_options(-fsanitize=${ORVA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -O1 -g1)
  add_link_options(-fsanitize=${ORVA_SANITIZE})
endif()

if(ORVA_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# These three warnings of g++ 12 are wrong in optimised builds: about inlined copies of std::string, and about atomics
# behind a pointer that was compared with null. The sanitizers and clang find real errors of these kinds.
add_library(orva_warnings INTERFACE)
target_compile_options(orva_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds>
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>)

# orva_glob(<variable> <folder>): the C++ sources of a folder, without those of the other platform.
function(orva_glob variable folder)
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "_posix\\.cpp$")
  else()
    list(FILTER sources EXCLUDE REGEX "_win32\\.cpp$")
  endif()
  set(${variable} ${sources} PARENT_SCOPE)
endfunction()
