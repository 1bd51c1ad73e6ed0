# The .deb packages, made by `cpack -G DEB` in a build whose prefix is /usr; see script/packages.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME umsservice)
set(CPACK_PACKAGE_VENDOR umsservice)
set(CPACK_PACKAGE_CONTACT "maintainers <maintainers@umsservice.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Serves phones and players attached as USB mass storage")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL library development program)
if(TARGET UMSServiceBundle)
  list(APPEND CPACK_COMPONENTS_ALL plugin)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# Where the program's own library is found while the dependencies of both are worked out.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/src")

set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_SOURCE_DIR}/CompressManPages.cmake")

# Each package with its name, and with the licence where Debian has it.
function(debian_package component name section description)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${description}" PARENT_SCOPE)
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${name}" RENAME copyright
          COMPONENT ${component})
endfunction()
set(library_package "libumsservice${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
debian_package(library ${library_package} libs "This is the shared library.")
debian_package(development libumsservice-dev libdevel
               "Headers, CMake package and pkg-config file for hosts in C++20.")
debian_package(program umsctl utils "The command-line program, with man pages and completions.")
if(TARGET UMSServiceBundle)
  debian_package(plugin umsservice-bundle gnustep "UMSService.bundle for hosts in Objective-C, with its headers.")
endif()

set(exact_library "${library_package} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${exact_library}")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${exact_library}")

include(CPack)
