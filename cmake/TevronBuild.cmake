# What every target of the project is compiled and linked with. The flags travel on one interface
# target, so that another project that includes this one with add_subdirectory keeps its own. Whether
# a warning of its compiler stops its build is that project's choice, too.

set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(TEVRON_CCACHE ccache)
if(TEVRON_CCACHE AND PROJECT_IS_TOP_LEVEL)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${TEVRON_CCACHE})
endif()

add_library(tevron_build_flags INTERFACE)
target_compile_features(tevron_build_flags INTERFACE cxx_std_17)
target_compile_options(tevron_build_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${PROJECT_IS_TOP_LEVEL}>:-Werror>
  -fstack-protector-strong)
target_link_options(tevron_build_flags INTERFACE -fstack-protector-strong)
target_compile_definitions(tevron_build_flags INTERFACE _GLIBCXX_ASSERTIONS)
if(WIN32)
  # Windows 10 and newer; without the macros that its headers have for min and max.
  target_compile_definitions(tevron_build_flags INTERFACE
    _WIN32_WINNT=0x0A00 NOMINMAX WIN32_LEAN_AND_MEAN)
else()
  target_compile_options(tevron_build_flags INTERFACE
    -fPIC $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
  target_link_options(tevron_build_flags INTERFACE -pie -Wl,-z,relro -Wl,-z,now)
endif()

# Two to five times faster to link than the default on a debug build. Debian 12's mold is faster still,
# but one in some hundred of its programs does not start: where thread-local data begins a few bytes
# below the page of the read-only relocations, the loader is told to protect a page that is not there.
find_program(TEVRON_LLD ld.lld)
if(TEVRON_LLD AND PROJECT_IS_TOP_LEVEL AND NOT WIN32)
  target_link_options(tevron_build_flags INTERFACE -fuse-ld=lld)
endif()

if(TEVRON_SANITIZERS)
  target_compile_options(tevron_build_flags INTERFACE
    -fsanitize=${TEVRON_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tevron_build_flags INTERFACE -fsanitize=${TEVRON_SANITIZERS})
endif()

# The build tree is an install root: the executables one level below fonts/, png/ and Config/.
set(TEVRON_ROOT_DIR ${PROJECT_BINARY_DIR}/root)
set(TEVRON_BIN_DIR ${TEVRON_ROOT_DIR}/bin)

# tevron_add_library(NAME INCLUDE_ROOT DIR SOURCES FILE...)
# Adds a static library of the project; headers are included relative to INCLUDE_ROOT.
function(tevron_add_library name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "INCLUDE_ROOT" "SOURCES")
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${ARG_INCLUDE_ROOT})
  target_link_libraries(${name} PRIVATE tevron_build_flags)
  target_compile_features(${name} PUBLIC cxx_std_17)
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

# tevron_add_program(NAME COMPONENT SOURCE...)
# Adds a program that lands in the install root's bin/. COMPONENT names the part of an installation,
# and with it the package, that it belongs to: "window" or "tools".
function(tevron_add_program name component)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE tevron_build_flags)
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON RUNTIME_OUTPUT_DIRECTORY ${TEVRON_BIN_DIR})
  install(TARGETS ${name} RUNTIME DESTINATION bin COMPONENT ${component})
endfunction()
