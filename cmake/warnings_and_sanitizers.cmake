add_library(corvana_warnings INTERFACE)
target_compile_options(corvana_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${CORVANA_WERROR}>:-Werror>
  $<$<CXX_COMPILER_ID:Clang>:-Wreserved-identifier>
  $<$<CXX_COMPILER_ID:Clang>:-Wreserved-macro-identifier>)

# What every release build is hardened with. A compiler's own _FORTIFY_SOURCE gives way to ours.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(optimized $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
add_compile_options("$<${optimized}:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
add_link_options("$<${optimized}:LINKER:-z,relro;LINKER:-z,now>")

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
