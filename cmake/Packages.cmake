# The packages, made by cpack: console, simulators and documentation, as tar.gz and, on Debian, as
# deb. The worker is not among them: it belongs into its application's bundle.
#
# Console and documentation stand where the system looks for programs and pages (bin, share), the
# simulators keep the bundle's layout in lib/kelvane, and links in bin lead to their tools.
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/links)
foreach(tool make-image make-service)
  file(CREATE_LINK ../lib/kelvane/bin/${tool} ${PROJECT_BINARY_DIR}/links/${tool} SYMBOLIC)
  install(FILES ${PROJECT_BINARY_DIR}/links/${tool} DESTINATION bin
          COMPONENT links EXCLUDE_FROM_ALL)
endforeach()
set(CPACK_INSTALL_CMAKE_PROJECTS
    ${PROJECT_BINARY_DIR} ${PROJECT_NAME} console /
    ${PROJECT_BINARY_DIR} ${PROJECT_NAME} documentation /
    ${PROJECT_BINARY_DIR} ${PROJECT_NAME} links /
    ${PROJECT_BINARY_DIR} ${PROJECT_NAME} simulators /lib/kelvane)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/PackageKinds.cmake)
set(CPACK_MONOLITHIC_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/PackagePermissions.cmake)

set(CPACK_PACKAGE_NAME kelvane)
set(CPACK_PACKAGE_VENDOR "Kelvane developers")
set(CPACK_PACKAGE_CONTACT "Kelvane developers <kelvane@localhost>")
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
set(CPACK_SOURCE_GENERATOR "")

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
  foreach(package libc6 libgcc-s1 libstdc++6)
    kelvane_debian_version(${package} version)
    list(APPEND depends "${package} (>= ${version})")
  endforeach()
  list(JOIN depends ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION utils)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
endif()

include(CPack)
