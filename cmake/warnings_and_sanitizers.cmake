add_library(corvana_warnings INTERFACE)
target_compile_options(corvana_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${CORVANA_WERROR}>:-Werror>
  $<$<CXX_COMPILER_ID:Clang>:-Wreserved-identifier>
  $<$<CXX_COMPILER_ID:Clang>:-Wreserved-macro-identifier>)

if(CORVANA_SANITIZER)
  add_compile_options(-fsanitize=${CORVANA_SANITIZER} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CORVANA_SANITIZER})
  # What a sanitizer adds to the code makes g++ see uninitialized variables where there are none.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(corvana_warnings INTERFACE -Wno-maybe-uninitialized)
  endif()
  if(CORVANA_SANITIZER MATCHES undefined)
    add_compile_options(-fno-sanitize-recover=undefined)
  endif()
endif()

# Fuzzers steer by which code an input has reached, in the libraries too.
if(CORVANA_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
