# For Windows each shared library needs a second one to link with, and CMake refuses to go on without
# its name. Those of this machine have none.
function(tevron_name_import_libraries)
  get_property(targets DIRECTORY PROPERTY IMPORTED_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL SHARED_LIBRARY)
      set_target_properties(${target} PROPERTIES IMPORTED_IMPLIB ${target}.dll.a)
    endif()
  endforeach()
endfunction()
cmake_language(DEFER CALL tevron_name_import_libraries)
