# Compiler flags that every target of the project shares.

if(ZELDOM40_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined -fno-sanitize-recover=all)
endif()

if(ZELDOM40_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "The fuzz targets need clang (cmake --preset fuzz)")
  endif()
  # The library is instrumented for coverage too; only the targets themselves link the fuzzer's main function.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(ZELDOM40_TIDY)
  find_program(CLANG_TIDY NAMES clang-tidy REQUIRED)
  set(CMAKE_CXX_CLANG_TIDY ${CLANG_TIDY})
endif()

# Warnings of one of our own targets. Sign conversion is left out: byte values and sizes mix too often for it to help.
function(zeldom40_set_flags target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion)
  # g++ 12 takes the concatenation of two short strings for an overlapping copy.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(ZELDOM40_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
