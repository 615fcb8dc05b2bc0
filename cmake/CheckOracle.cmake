# cmake -DPROGRAM=command -DFOLDER=folder -DSYSTEM=wine, windows or portable -P CheckOracle.cmake
# Compares the program's answers with FOLDER/oracle.txt. Those that FOLDER/differences.txt lists
# for the system must differ in just that way, all others not at all.

cmake_minimum_required(VERSION 3.25)

# Lists "question: name=answer" for each answer in the text.
function(read_answers text result)
    string(REGEX MATCHALL "[^\r\n]+" lines "${text}")
    foreach(line IN LISTS lines)
        string(REGEX MATCH "^(.*: )(.*)$" line "${line}")
        string(REPLACE " " ";" answers "${CMAKE_MATCH_2}")
        list(TRANSFORM answers PREPEND "${CMAKE_MATCH_1}")
        list(APPEND all ${answers})
    endforeach()
    set(${result} ${all} PARENT_SCOPE)
endfunction()

execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
file(READ ${FOLDER}/oracle.txt oracle)
read_answers("${output}" given)
read_answers("${oracle}" expected)
file(STRINGS ${FOLDER}/differences.txt lines REGEX "^${SYSTEM} *\\|")
foreach(line IN LISTS lines)
    string(REPLACE "|" ";" fields "${line}")
    list(GET fields 1 answers)
    list(GET fields 2 reason) # not without one
    string(STRIP "${answers}" answers)
    read_answers("${answers}" differences)
    foreach(difference IN LISTS differences)
        if(difference IN_LIST expected OR NOT difference IN_LIST given)
            message(SEND_ERROR "listed, but no difference any more: ${difference}")
        endif()
        list(REMOVE_ITEM given "${difference}")
        string(REGEX REPLACE "=.*" "=" question "${difference}")
        list(FILTER expected EXCLUDE REGEX "^${question}")
    endforeach()
endforeach()

foreach(answer IN LISTS given)
    if(NOT answer IN_LIST expected)
        message(SEND_ERROR "answers ${answer}")
    endif()
endforeach()
foreach(answer IN LISTS expected)
    if(NOT answer IN_LIST given)
        message(SEND_ERROR "should answer ${answer}")
    endif()
endforeach()
