# What `cmake --install` puts where, in two components: runtime (the server with its extension) and
# development (what another extension is built with). The layout is one that can be moved: programs
# and libraries find each other from where they are.
set(CMAKE_INSTALL_DOCDIR share/doc/hmi-server)
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(private_dir ${CMAKE_INSTALL_LIBDIR}/hmi-server)  # nobody else links these
if(WIN32)
    set(private_dir ${CMAKE_INSTALL_BINDIR})  # Windows looks for libraries beside the program
else()
    set_target_properties(ZrHmiSrvExt PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    set_target_properties(hmi-server PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    foreach(library ZrHmiEventLogger ZrEventLoggerFnxProxy ZrFnxDll)
        set_target_properties(${library} PROPERTIES INSTALL_RPATH "$ORIGIN:$ORIGIN/..")
    endforeach()
endif()

install(TARGETS hmi-server COMPONENT runtime)
install(TARGETS ZrHmiSrvExt EXPORT ZrHmiSrv
    RUNTIME COMPONENT runtime
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development)
install(TARGETS ZrHmiEventLogger ZrEventLoggerFnxProxy ZrFnxDll
    RUNTIME DESTINATION ${private_dir} COMPONENT runtime
    LIBRARY DESTINATION ${private_dir} COMPONENT runtime
    ARCHIVE COMPONENT import EXCLUDE_FROM_ALL)
install(FILES demo/plant.json demo/config.json
    DESTINATION ${CMAKE_INSTALL_DATADIR}/hmi-server/demo COMPONENT runtime)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT runtime)
if(MINGW)
    install(FILES ${runtime_libraries} $<TARGET_FILE:boost_thread>
        DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
else()
    install(FILES packaging/hmi-server.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT runtime)
    install(FILES packaging/hmi-server.service DESTINATION lib/systemd/system COMPONENT runtime)
    install(FILES packaging/config.json DESTINATION ${CMAKE_INSTALL_DATADIR}/hmi-server COMPONENT runtime)
    # Beside /usr and not in it, as everywhere on a Unix system.
    install(CODE "
        string(REGEX REPLACE /usr$ \"\" root \"\${CMAKE_INSTALL_PREFIX}\")
        file(INSTALL ${PROJECT_SOURCE_DIR}/packaging/environment
            DESTINATION \${root}/etc/hmi-server)" COMPONENT runtime)
endif()

# The headers of the extension interface that an extension includes, as "host/NAME.h".
set(headers Command Context Counted Event Export IZrHmiSrvExtHost Listeners Result Text Threading Time Value)
list(TRANSFORM headers PREPEND src/host/)
list(TRANSFORM headers APPEND .h)
install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ZrHmiSrv/host COMPONENT development)
target_include_directories(ZrHmiSrvExt INTERFACE
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/ZrHmiSrv>)
target_compile_features(ZrHmiSrvExt INTERFACE cxx_std_20)

# What find_package gives, in this tree: these headers and no others.
set(public_headers ${CMAKE_BINARY_DIR}/include/ZrHmiSrv)
file(REMOVE_RECURSE ${public_headers})
file(MAKE_DIRECTORY ${public_headers}/host)
foreach(header ${headers})
    cmake_path(GET header FILENAME name)
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${header} ${public_headers}/host/${name}
        COPY_ON_ERROR SYMBOLIC)
endforeach()
add_library(ZrHmiSrvInstalled INTERFACE)
target_include_directories(ZrHmiSrvInstalled INTERFACE ${public_headers})
target_link_libraries(ZrHmiSrvInstalled INTERFACE $<LINK_ONLY:ZrHmiSrvExt> Boost::headers)
add_library(ZrHmiSrv::ZrHmiSrvExt ALIAS ZrHmiSrvInstalled)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZrHmiSrv)
install(EXPORT ZrHmiSrv NAMESPACE ZrHmiSrv:: FILE ZrHmiSrvTargets.cmake
    DESTINATION ${package_dir} COMPONENT development)
write_basic_package_version_file(ZrHmiSrvConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/ZrHmiSrvConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/ZrHmiSrvConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/ZrHmiSrv/examples COMPONENT development)
# In this tree find_package answers with the target itself.
file(WRITE ${CMAKE_FIND_PACKAGE_REDIRECTS_DIR}/ZrHmiSrvConfig.cmake "")
configure_file(${CMAKE_CURRENT_BINARY_DIR}/ZrHmiSrvConfigVersion.cmake
    ${CMAKE_FIND_PACKAGE_REDIRECTS_DIR}/ZrHmiSrvConfigVersion.cmake COPYONLY)
