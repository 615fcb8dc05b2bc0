# Boost for the Windows build: the headers of this machine's own Boost, which serve any system, and
# Boost.Thread from five source files of the same version. It is a shared library because it keeps
# state for each thread, of which a process may have only one set.
set(bridge_third_party ${CMAKE_BINARY_DIR}/third-party)

# A folder with Boost and the other header-only libraries: their neighbours under /usr/include are
# Linux's.
file(MAKE_DIRECTORY ${bridge_third_party}/include)
foreach(library boost CLI fmt spdlog)
    file(CREATE_LINK /usr/include/${library} ${bridge_third_party}/include/${library} SYMBOLIC)
endforeach()
add_library(Boost::headers INTERFACE IMPORTED)
target_include_directories(Boost::headers SYSTEM INTERFACE ${bridge_third_party}/include)
target_compile_definitions(Boost::headers INTERFACE BOOST_CHRONO_HEADER_ONLY)
target_link_libraries(Boost::headers INTERFACE ws2_32 mswsock bcrypt)

set(bridge_thread_source ${bridge_third_party}/boost-thread)
if(NOT EXISTS ${bridge_thread_source}/future.cpp)
    message(STATUS "Taking the source of Boost.Thread from its Debian package")
    execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/boost-thread-source.sh ${bridge_thread_source}
        COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
endif()
add_library(boost_thread SHARED
    ${bridge_thread_source}/future.cpp
    ${bridge_thread_source}/win32/thread.cpp
    ${bridge_thread_source}/win32/thread_primitives.cpp
    ${bridge_thread_source}/win32/tss_dll.cpp
    ${bridge_thread_source}/win32/tss_pe.cpp)
target_compile_options(boost_thread PRIVATE -w)
target_compile_definitions(boost_thread
    PRIVATE BOOST_THREAD_BUILD_DLL
    INTERFACE BOOST_THREAD_USE_DLL
    PUBLIC BOOST_ALL_NO_LIB _WIN32_WINNT=0x0A00)
target_link_libraries(boost_thread PUBLIC Boost::headers)
add_library(Boost::thread ALIAS boost_thread)
