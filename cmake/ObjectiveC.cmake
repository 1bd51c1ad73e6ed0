# What the plug-in needs: an Objective-C++ compiler and Foundation, on Linux that of GNUstep. The library and
# umsctl need neither. Gives the target `foundation` to link with.
#
# Left out where it cannot be built or would prove nothing:
#   - with clang on Linux: GNUstep base is built for the other compiler's runtime, whose headers clang has not
#   - with the thread sanitizer: the Objective-C runtime and Foundation are not instrumented, so what their locks
#     order looks like a race

# Looked for at each configuration, as GNUstep may be installed between two of them.
set(UMS_PLUGIN AUTO CACHE STRING "Build UMSService.bundle, the Objective-C plug-in: ON, OFF, or AUTO, if it can be")
if(NOT APPLE)
  find_program(GNUSTEP_CONFIG gnustep-config)
endif()

function(find_objective_c result)
  set(${result} OFF PARENT_SCOPE)
  if(NOT APPLE)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU" OR UMS_SANITIZE MATCHES "thread" OR NOT GNUSTEP_CONFIG)
      return()
    endif()
    # A driver without these parts answers with their bare names.
    foreach(part cc1obj cc1objplus)
      execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-prog-name=${part} OUTPUT_VARIABLE program
                      OUTPUT_STRIP_TRAILING_WHITESPACE)
      if(NOT IS_ABSOLUTE "${program}")
        return()
      endif()
    endforeach()
    execute_process(COMMAND ${GNUSTEP_CONFIG} --variable=GNUSTEP_SYSTEM_HEADERS OUTPUT_VARIABLE headers
                    OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS "${headers}/Foundation/Foundation.h")
      return()
    endif()
  endif()
  set(${result} ON PARENT_SCOPE)
endfunction()

if(UMS_PLUGIN STREQUAL "AUTO")
  find_objective_c(UMS_PLUGIN)
  message(STATUS "UMSService.bundle: ${UMS_PLUGIN}")
endif()
if(NOT UMS_PLUGIN)
  return()
endif()

# The same compiler for every language: they share one runtime of exceptions.
if(NOT DEFINED CMAKE_OBJCXX_COMPILER)
  set(CMAKE_OBJCXX_COMPILER "${CMAKE_CXX_COMPILER}")
endif()
if(NOT DEFINED CMAKE_OBJC_COMPILER)
  get_filename_component(compiler_folder "${CMAKE_CXX_COMPILER}" DIRECTORY)
  find_program(CMAKE_OBJC_COMPILER NAMES gcc clang cc HINTS "${compiler_folder}")
endif()
enable_language(OBJC OBJCXX)

# The standards are named here, as CMake knows none of these languages for every compiler. Methods cannot leave a
# parameter without a name; a class without fields is an empty structure to the compiler.
add_library(foundation INTERFACE)
target_compile_options(foundation INTERFACE "$<$<COMPILE_LANGUAGE:OBJCXX>:-std=c++20>"
                                            "$<$<COMPILE_LANGUAGE:OBJC>:-std=gnu11;-Wno-pedantic>"
                                            "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-Wno-unused-parameter>")
if(APPLE)
  target_compile_options(foundation INTERFACE "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-fno-objc-arc>")
  target_link_libraries(foundation INTERFACE "-framework Foundation")
  return()
endif()

# The compiler's settings come from GNUstep; its warnings and its optimisation are this project's own.
execute_process(COMMAND ${GNUSTEP_CONFIG} --objc-flags OUTPUT_VARIABLE objc_flags COMMAND_ERROR_IS_FATAL ANY
                OUTPUT_STRIP_TRAILING_WHITESPACE)
separate_arguments(objc_flags UNIX_COMMAND "${objc_flags}")
foreach(flag IN LISTS objc_flags)
  if(flag MATCHES "^-I(/.*)$")
    target_include_directories(foundation SYSTEM INTERFACE "${CMAKE_MATCH_1}")
  elseif(flag MATCHES "^-[Df]|^-pthread$")
    target_compile_options(foundation INTERFACE "$<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:${flag}>")
  endif()
endforeach()
execute_process(COMMAND ${GNUSTEP_CONFIG} --base-libs OUTPUT_VARIABLE base_libraries COMMAND_ERROR_IS_FATAL ANY
                OUTPUT_STRIP_TRAILING_WHITESPACE)
separate_arguments(base_libraries UNIX_COMMAND "${base_libraries}")
foreach(flag IN LISTS base_libraries)
  if(flag MATCHES "^-L(/.*)$" AND IS_DIRECTORY "${CMAKE_MATCH_1}")
    target_link_directories(foundation INTERFACE "${CMAKE_MATCH_1}")
  elseif(flag MATCHES "^-l")
    target_link_libraries(foundation INTERFACE ${flag})
  endif()
endforeach()
