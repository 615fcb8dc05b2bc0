# export_only(TARGET SYMBOL): the shared library shows this one symbol and nothing else, neither of
# its own code nor of what it links statically.
function(export_only target symbol)
    if(WIN32)
        set(file ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
        file(CONFIGURE OUTPUT ${file} CONTENT "EXPORTS\n    ${symbol}\n")
        target_sources(${target} PRIVATE ${file})
    else()
        set(file ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
        file(CONFIGURE OUTPUT ${file} CONTENT "{ global: ${symbol}; local: *; };\n")
        target_link_options(${target} PRIVATE -Wl,--version-script=${file})
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${file})
    endif()
endfunction()
