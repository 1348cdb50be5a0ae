# Stops with a clear message where this tree cannot be compiled.
if(MSVC)
  message(FATAL_ERROR "The Microsoft compiler is not supported. Build the Windows DLL with mingw-w64: "
    "cmake --preset windows")
endif()

function(orva_require_compiler name version)
  if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS version)
    message(FATAL_ERROR "${name} ${version} or newer is needed, and ${CMAKE_CXX_COMPILER} is "
      "${CMAKE_CXX_COMPILER_VERSION}. Name another one with -DCMAKE_CXX_COMPILER=...")
  endif()
endfunction()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  orva_require_compiler(g++ 12)
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  orva_require_compiler(clang 14)
else()
  message(WARNING "${CMAKE_CXX_COMPILER_ID} has not been tried. g++ 12 and clang 14, or newer, are known to work.")
endif()

if(NOT CMAKE_SIZEOF_VOID_P EQUAL 8 OR NOT CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64|aarch64)$")
  message(FATAL_ERROR "OrvaAPI64 is for x86-64 and 64-bit ARM, and this build is for ${CMAKE_SYSTEM_PROCESSOR} with "
    "${CMAKE_SIZEOF_VOID_P} byte pointers.")
endif()
