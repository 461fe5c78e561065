# Warnings for our own code; generated code and third-party headers do not link this target.
add_library(tarnfw_warnings INTERFACE)
target_compile_options(
  tarnfw_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wformat=2
                            -Wnon-virtual-dtor -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Our printf-like macros pass a literal after a literal prefix through __VA_OPT__.
  target_compile_options(tarnfw_warnings INTERFACE -Wno-gnu-zero-variadic-macro-arguments)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # It sees overlapping copies in the concatenation of a literal and a string (GCC bug 105651).
  target_compile_options(tarnfw_warnings INTERFACE -Wno-restrict)
endif()

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND TARNFW_SANITIZE STREQUAL "address")
  # What the sanitizer adds makes g++ 12 see reads before writes inside <regex>. The same code is
  # compiled with the warning by every build without the sanitizer.
  target_compile_options(tarnfw_warnings INTERFACE -Wno-maybe-uninitialized)
endif()
