# spdlog and the formatting below it as headers, which need no library for Windows.
if(NOT TARGET spdlog::spdlog_header_only)
  include(${CMAKE_CURRENT_LIST_DIR}/HostHeaders.cmake)
  tevron_host_headers(spdlog::spdlog_header_only spdlog fmt)
  target_compile_definitions(spdlog::spdlog_header_only INTERFACE FMT_HEADER_ONLY)
endif()
set(spdlog_FOUND TRUE)
