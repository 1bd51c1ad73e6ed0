# Headers of the standard library that nearly every source needs, compiled once. The clang preset goes without,
# so that each source proves that it includes what it uses.
option(UMS_PRECOMPILE "Precompile headers of the standard library" ON)
function(ums_precompile target)
  cmake_parse_arguments(precompile "" "REUSE_FROM" "" ${ARGN})
  if(NOT UMS_PRECOMPILE)
    return()
  endif()
  if(precompile_REUSE_FROM AND NOT precompile_REUSE_FROM STREQUAL target)
    target_precompile_headers(${target} REUSE_FROM ${precompile_REUSE_FROM})
  else()
    target_precompile_headers(${target} PRIVATE <algorithm> <atomic> <functional> <memory> <mutex> <optional> <string>
                              <string_view> <thread> <variant> <vector>)
  endif()
endfunction()

# A room is one folder of sources and one target. Only the rooms that it names as NEEDS (and what those need)
# are on its include path, so an include against the direction of the house does not build.
function(ums_room name folder)
  cmake_parse_arguments(room "" "" "SOURCES;NEEDS" ${ARGN})
  list(TRANSFORM room_SOURCES PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/")
  add_library(${name} OBJECT ${room_SOURCES})
  target_include_directories(${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}/${folder}" "${PROJECT_SOURCE_DIR}/include")
  target_link_libraries(${name} PUBLIC ${room_NEEDS})
  # Of the library that people install, only what the public headers mark is seen from outside.
  set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  ums_precompile(${name} REUSE_FROM ums_platform)
  set_property(GLOBAL APPEND PROPERTY UMS_ROOMS ${name})
endfunction()
