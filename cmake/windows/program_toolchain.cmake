# The whole program as far as it can be configured: what Debian has for itself alone, Qt above all,
# stands in for what it would be on Windows. Nothing of it can be built.
include(${CMAKE_CURRENT_LIST_DIR}/toolchain.cmake)

foreach(kind IN ITEMS LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} BOTH)
endforeach()
set(CMAKE_PREFIX_PATH /usr)
execute_process(COMMAND gcc -dumpmachine
  OUTPUT_VARIABLE CMAKE_LIBRARY_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
