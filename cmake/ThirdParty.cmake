# Third-party libraries behind targets of our own, so that the rest of the tree does not know
# where a platform takes them from.
find_package(Threads REQUIRED)

if(WIN32)
    include(WindowsBoost)
else()
    find_package(Boost 1.81 REQUIRED COMPONENTS thread)
endif()
add_library(bridge_boost INTERFACE)
target_link_libraries(bridge_boost INTERFACE Boost::headers Threads::Threads)
target_compile_definitions(bridge_boost INTERFACE
    BOOST_ALL_NO_LIB BOOST_ASIO_NO_DEPRECATED BOOST_BEAST_USE_STD_STRING_VIEW BOOST_DLL_USE_STD_FS
    BOOST_DISABLE_PRAGMA_MESSAGE)
add_library(bridge_boost_thread INTERFACE)
target_link_libraries(bridge_boost_thread INTERFACE bridge_boost Boost::thread)

# Linked into each library and program that reads JSON; hidden in the libraries.
add_library(bridge_json STATIC ${CMAKE_CURRENT_LIST_DIR}/BoostJson.cpp)
target_link_libraries(bridge_json PUBLIC bridge_boost)

add_library(bridge_url STATIC ${CMAKE_CURRENT_LIST_DIR}/BoostUrl.cpp)
target_link_libraries(bridge_url PUBLIC bridge_boost)

# Headers only, so that the Windows build can have them.
add_library(bridge_log INTERFACE)
target_link_libraries(bridge_log INTERFACE bridge_boost)
target_compile_definitions(bridge_log INTERFACE SPDLOG_HEADER_ONLY SPDLOG_FMT_EXTERNAL FMT_HEADER_ONLY)

# The same for every system.
find_file(UNICODE_CASE_FOLDING unicode/CaseFolding.txt PATHS /usr/share NO_CMAKE_FIND_ROOT_PATH
    REQUIRED)

set(ZLIB_USE_STATIC_LIBS ${WIN32})  # no further library to ship
find_package(ZLIB REQUIRED)

# There are no Windows packages of these: the server has neither TLS, users nor a history there.
add_library(bridge_tls INTERFACE)
add_library(bridge_passwords INTERFACE)
add_library(bridge_database INTERFACE)
if(NOT WIN32)
    find_package(SQLite3 REQUIRED)
    target_link_libraries(bridge_database INTERFACE SQLite::SQLite3)
    find_path(SODIUM_INCLUDE_DIR sodium.h REQUIRED)
    find_library(SODIUM_LIBRARY sodium REQUIRED)
    target_include_directories(bridge_passwords SYSTEM INTERFACE ${SODIUM_INCLUDE_DIR})
    target_link_libraries(bridge_passwords INTERFACE ${SODIUM_LIBRARY})
    find_package(OpenSSL REQUIRED)
    target_link_libraries(bridge_tls INTERFACE OpenSSL::SSL)
    target_compile_definitions(bridge_tls INTERFACE HMI_WITH_TLS)
endif()

add_library(bridge_ffi INTERFACE)
if(NOT WIN32)
    find_path(FFI_INCLUDE_DIR ffi.h REQUIRED)
    find_library(FFI_LIBRARY ffi REQUIRED)
    target_include_directories(bridge_ffi SYSTEM INTERFACE ${FFI_INCLUDE_DIR})
    target_link_libraries(bridge_ffi INTERFACE ${FFI_LIBRARY})
endif()

if(BRIDGE_TESTS OR BRIDGE_BENCHMARKS)
    block()
        set(CMAKE_CXX_VISIBILITY_PRESET default)
        set(CMAKE_VISIBILITY_INLINES_HIDDEN OFF)
        set(INSTALL_GTEST OFF)
        add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    endblock()
endif()
