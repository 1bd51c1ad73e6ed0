# Debian's man pages are compressed; without the time, so that the same build gives the same package.
file(GLOB_RECURSE pages "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/umsctl*.[15]")
list(FILTER pages INCLUDE REGEX "/man[15]/")
if(NOT pages)
  message(FATAL_ERROR "no man page in ${CPACK_TEMPORARY_INSTALL_DIRECTORY}")
endif()
foreach(page IN LISTS pages)
  execute_process(COMMAND gzip -9nf "${page}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
