# cmake -DLIBRARY=file -DEXPECTED=name -DTOOL=objdump or nm -P CheckExports.cmake
# Fails unless the export table of the shared library holds exactly this one name.
cmake_minimum_required(VERSION 3.25)
if(LIBRARY MATCHES "\\.dll$")
    set(options -p)
    set(heading "^.*\\[Ordinal/Name Pointer\\] Table")
    set(entry "\n\t\\[ *[0-9]+\\]( \\+base\\[ *[0-9]+\\] +[0-9a-f]+)? ([A-Za-z_?][^ \n]*)")
else()
    set(options -D --defined-only)
    set(heading "^$") # none
    set(entry "\n?[0-9a-f]+ [A-Za-z] ([^ \n]+)")
endif()
execute_process(COMMAND ${TOOL} ${options} ${LIBRARY} OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "${heading}" "" table "${table}")
string(REGEX MATCHALL "${entry}" entries "${table}")
list(TRANSFORM entries REPLACE "^.* " "")
if(NOT entries STREQUAL EXPECTED)
    message(FATAL_ERROR "${LIBRARY} exports '${entries}' and not just '${EXPECTED}'")
endif()
