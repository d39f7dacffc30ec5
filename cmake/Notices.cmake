# The notices and bills of materials of each component that is installed.
kelvane_third_party(worker Kelvane)
kelvane_third_party(console kelvane-console)
kelvane_third_party(simulators ZORAPI EngineRunner make-image make-service)

set(in_bundle Contents/Resources/third-party)
kelvane_install_third_party(worker ${in_bundle} COMPONENT worker EXCLUDE_FROM_ALL)
kelvane_install_third_party(simulators ${in_bundle} COMPONENT simulators EXCLUDE_FROM_ALL)
kelvane_install_third_party(simulators ${CMAKE_INSTALL_DOCDIR}/third-party COMPONENT tools)
kelvane_install_third_party(console ${CMAKE_INSTALL_DOCDIR}/third-party COMPONENT console)
