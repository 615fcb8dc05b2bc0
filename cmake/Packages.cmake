# `cpack` makes two Debian packages, and of a Windows build one ZIP.
set(CPACK_PACKAGE_NAME hmi-server)
set(CPACK_PACKAGE_VENDOR "Event-logger bridge")
set(CPACK_PACKAGE_CONTACT "Event-logger bridge <root@localhost>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_MONOLITHIC_INSTALL ON)
    set(CPACK_PACKAGE_FILE_NAME hmi-server-${PROJECT_VERSION}-windows)
else()
    set(CPACK_GENERATOR DEB)
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
    set(CPACK_DEB_COMPONENT_INSTALL ON)
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

    set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME hmi-server)
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION net)
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "adduser, procps")
    set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "HMI server with the event-logger extension
Alarms and messages of automation runtimes: by HTTP, by WebSocket and on a
page for operators, who confirm them there.")
    set(scripts conffiles postinst prerm postrm)
    list(TRANSFORM scripts PREPEND ${PROJECT_SOURCE_DIR}/packaging/debian/)
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${scripts})
    set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_STRICT_PERMISSION ON)

    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzrhmisrvext-dev)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
        "hmi-server (= ${PROJECT_VERSION}), libboost1.81-dev")
    set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Headers to write an extension of hmi-server with
The extension interface: values, events, listeners, a worker pool. With the
package for CMake (ZrHmiSrv) and an example.")
endif()
include(CPack)
