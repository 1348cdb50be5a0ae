# How everything in this tree is compiled.
find_package(Threads REQUIRED)

# The binaries name no path of the machine that built them.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)

if(ORVA_SANITIZE)
  # Lines are all that a report needs of the debugger's data.
  add_compile_options(-fsanitize=${ORVA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -O1 -g1)
  add_link_options(-fsanitize=${ORVA_SANITIZE})
endif()

if(ORVA_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# g++ 12 reports every "literal" + std::string of an optimised build as an overlapping copy, which it is not.
add_library(orva_warnings INTERFACE)
target_compile_options(orva_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
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
