# Headers that a target reads once instead of in each of its sources. The `clang` preset does without
# (CMAKE_DISABLE_PRECOMPILE_HEADERS), so that a source that forgets an include is noticed.

# tarnfw_precompile(TARGET SCOPE HEADER...)
# tarnfw_precompile(TARGET REUSE_FROM OTHER) takes what was compiled for another target, with the same
# options.
function(tarnfw_precompile target scope)
  target_precompile_headers(${target} ${scope} ${ARGN})
  if(TARNFW_CCACHE)
    # ccache compares the precompiled header by what it was made of.
    target_compile_options(
      ${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>
                        "$<$<COMPILE_LANG_AND_ID:CXX,Clang>:SHELL:-Xclang -fno-pch-timestamp>")
  endif()
endfunction()

# Reading the standard library's headers is 40 % of compiling one of our sources.
function(tarnfw_precompile_standard_headers target)
  tarnfw_precompile(
    ${target}
    PRIVATE
    <algorithm>
    <array>
    <cerrno>
    <cstdint>
    <cstdio>
    <cstdlib>
    <cstring>
    <functional>
    <limits>
    <memory>
    <optional>
    <span>
    <string>
    <string_view>
    <utility>
    <vector>)
endfunction()
