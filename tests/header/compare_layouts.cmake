# SPDX-License-Identifier: MIT
# Runs the C and the C++ build of the record checks and compares what they print.
# Arguments: -D C_PROGRAM=... -D CXX_PROGRAM=...
foreach(language C CXX)
    execute_process(COMMAND ${${language}_PROGRAM} OUTPUT_VARIABLE ${language}_layout
        RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${${language}_PROGRAM} failed: ${result}")
    endif()
endforeach()
string(LENGTH "${C_layout}" length)
if(length EQUAL 0)
    message(FATAL_ERROR "no layout was printed")
endif()
if(NOT C_layout STREQUAL CXX_layout)
    message(FATAL_ERROR "C and C++ see different records:\n${C_layout}\n${CXX_layout}")
endif()
