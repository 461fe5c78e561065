# TARNFW_SANITIZE: empty, "address" (with undefined), "thread" or "fuzzer" (address, undefined and
# coverage for libFuzzer). The presets set it.
set(TARNFW_SANITIZE "" CACHE STRING "Sanitizers to build with")

if(TARNFW_SANITIZE STREQUAL "address")
  set(flags -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(TARNFW_SANITIZE STREQUAL "thread")
  set(flags -fsanitize=thread -fno-omit-frame-pointer)
elseif(TARNFW_SANITIZE STREQUAL "fuzzer")
  set(flags -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all
      -fno-omit-frame-pointer)
elseif(NOT TARNFW_SANITIZE STREQUAL "")
  message(FATAL_ERROR "TARNFW_SANITIZE: unknown value ${TARNFW_SANITIZE}")
endif()

# Under a sanitizer g++ inlines less, and takes the operator delete that ends an object itself for one
# that does not belong to the allocation.
if(flags AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  list(APPEND flags $<$<COMPILE_LANGUAGE:CXX>:-Wno-mismatched-new-delete>)
endif()

if(flags)
  add_compile_options(${flags})
  add_link_options(${flags})
endif()
