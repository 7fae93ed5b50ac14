add_library(corvana_warnings INTERFACE)
target_compile_options(corvana_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${CORVANA_WERROR}>:-Werror>
  $<$<CXX_COMPILER_ID:Clang>:-Wreserved-identifier>
  $<$<CXX_COMPILER_ID:Clang>:-Wreserved-macro-identifier>)

# Hardening of every release build. Some compilers define _FORTIFY_SOURCE themselves, hence the -U.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(optimized $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
add_compile_options("$<${optimized}:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
add_link_options("$<${optimized}:LINKER:-z,relro;LINKER:-z,now>")

if(CORVANA_SANITIZER)
  add_compile_options(-fsanitize=${CORVANA_SANITIZER} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CORVANA_SANITIZER})
  # In code with a sanitizer g++ warns of uninitialized variables where there are none.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(corvana_warnings INTERFACE -Wno-maybe-uninitialized)
  endif()
  if(CORVANA_SANITIZER MATCHES undefined)
    add_compile_options(-fno-sanitize-recover=undefined)
  endif()
endif()

# The fuzzers need the coverage of the libraries too.
if(CORVANA_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
