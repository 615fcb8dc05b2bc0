# Warnings for the project's own targets (link bridge_flags) and sanitizers for everything.
add_library(bridge_flags INTERFACE)
target_compile_options(bridge_flags INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wshadow=local -Woverloaded-virtual
    -Wold-style-cast -Wcast-qual -Wconversion -Wsign-conversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(bridge_flags INTERFACE -Wthread-safety -Wno-unknown-warning-option
        -Wno-shadow -Wshadow-uncaptured-local)
endif()
if(WIN32)
    target_compile_definitions(bridge_flags INTERFACE
        UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
else()
    # On Windows every automation interface would be warned of.
    target_compile_options(bridge_flags INTERFACE -Wnon-virtual-dtor)
    if(BRIDGE_FUZZ)
        add_compile_options(-fsanitize=fuzzer-no-link)  # libraries take the rest from the program
    else()
        target_link_options(bridge_flags INTERFACE -Wl,--no-undefined)
    endif()
endif()
target_include_directories(bridge_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)

# Released programs resist what an error of ours might let somebody write.
if(NOT WIN32 AND NOT BRIDGE_SANITIZE AND CMAKE_BUILD_TYPE MATCHES "Rel")
    add_compile_options(-fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
        add_compile_options(-fcf-protection)
    endif()
    add_link_options(-Wl,-z,relro,-z,now)
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
endif()

if(BRIDGE_SANITIZE)
    add_compile_options(-fsanitize=${BRIDGE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1 -g1)
    add_link_options(-fsanitize=${BRIDGE_SANITIZE})
    # Asio orders its reference counts with fences, which GCC says it cannot follow under this sanitizer.
    if(BRIDGE_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-Wno-tsan)
    endif()
endif()
