# The same target names as in our own layer, taken from a directory of finished libraries.
include(${CMAKE_CURRENT_LIST_DIR}/plugins.cmake)

function(corvana_import_library name)
  set(library ${FLUTTER_EMBEDDING_DIR}/lib/lib${name}.so)
  if(NOT EXISTS ${library})
    message(FATAL_ERROR "FLUTTER_EMBEDDING_DIR has no lib/lib${name}.so")
  endif()
  add_library(${name} SHARED IMPORTED GLOBAL)
  set_target_properties(${name} PROPERTIES IMPORTED_LOCATION ${library})
  configure_file(${library} ${CORVANA_BUNDLE_DIR}/lib/lib${name}.so COPYONLY)
endfunction()

if(NOT EXISTS ${FLUTTER_EMBEDDING_DIR}/include/flutter_linux/flutter_linux.h)
  message(FATAL_ERROR "FLUTTER_EMBEDDING_DIR has no include/flutter_linux/flutter_linux.h")
endif()

corvana_import_library(flutter_linux_gtk)
target_include_directories(flutter_linux_gtk SYSTEM INTERFACE ${FLUTTER_EMBEDDING_DIR}/include)
foreach(plugin IN LISTS CORVANA_PLUGINS)
  corvana_import_library(${plugin})
endforeach()
