# The packages, made by cpack: console, simulators and documentation, as tar.gz and, on Debian, as
# deb; each holds what "cmake --install" puts below a prefix. The worker is not among them: it
# belongs into its application's bundle. The source archive holds what git has of the last commit.
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/PackageKinds.cmake)
set(CPACK_MONOLITHIC_INSTALL ON)
set(CPACK_STRIP_FILES ON)

set(CPACK_PACKAGE_NAME kelvane)
set(CPACK_PACKAGE_VENDOR "Kelvane developers")
set(CPACK_PACKAGE_CONTACT "Kelvane developers <developers@kelvane.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Console and simulators for the Kelvane enclosure worker")
set(CPACK_PACKAGE_DESCRIPTION
"kelvane-console submits maintenance jobs for external storage enclosures to
the worker in an application's bundle, and follows them. With it come
simulated controllers and a simulated update engine for those bundles, the
tools that make firmware images and update services for them, and the
reference pages.")
set(CPACK_PACKAGE_FILE_NAME
    kelvane-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_GENERATOR TGZ)

set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME kelvane-${PROJECT_VERSION})
set(CPACK_SOURCE_INSTALLED_DIRECTORIES "")

# The upstream version of an installed Debian package.
function(kelvane_debian_version package result)
  execute_process(COMMAND ${KELVANE_DPKG_QUERY} --show --showformat=\${Version} ${package}
                  OUTPUT_VARIABLE version COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE "-[^-]*$" "" version "${version}")
  set(${result} "${version}" PARENT_SCOPE)
endfunction()

# What the programs need of the system, no older than what they were built with.
find_program(KELVANE_DPKG_QUERY dpkg-query)
if(KELVANE_DPKG_QUERY)
  list(APPEND CPACK_GENERATOR DEB)
  if(KELVANE_SYSTEM_LIBRARIES)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  else()
    foreach(package libc6 libgcc-s1 libstdc++6)
      kelvane_debian_version(${package} version)
      list(APPEND depends "${package} (>= ${version})")
    endforeach()
    list(JOIN depends ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
  endif()
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION utils)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
endif()

configure_file(${PROJECT_SOURCE_DIR}/cmake/PackageKinds.cmake.in
               ${PROJECT_BINARY_DIR}/PackageKinds.cmake @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in
               ${PROJECT_BINARY_DIR}/debian/changelog @ONLY)
include(CPack)
