# SPDX-License-Identifier: MIT
# Checks that a shared library exports what platform/em862x.h declares and nothing else.
# Usage: cmake -D NM=... -D LIBRARY=... -P exported_symbols.cmake
set(expected
    FSS_free_char
    FSS_get_bitmap
    FSS_set_scale
    RMCloseFile
    RMFreeNonAscii
    RMOpenFile
    RMOpenFileCookie
    RMReadFile
    RMTTCloseFont
    RMTTGetCompoundCount
    RMTTGetGlyphMetrics
    RMTTGetGlyphPointer
    RMTTGetScaleMatrix
    RMTTOpenFont
    RMnonAsciiFromAscii
    RUACreateInstance
    RUAExchangeProperty
    RUAFree
    RUALock
    RUAMalloc
    RUAMap
    RUASetProperty
    RUAUnLock
    RUAUnMap
    fetchClose
    fetchOpen
    httpFileOps
    jpeg_stdio_src_rm_file)

execute_process(COMMAND ${NM} --dynamic --defined-only --format=posix ${LIBRARY}
    OUTPUT_VARIABLE output RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${NM} ${LIBRARY}: ${result}")
endif()

set(found "")
string(REGEX MATCHALL "[^\n]+" lines "${output}")
foreach(line IN LISTS lines)
    # "name@@version type ..."; the version itself is of type A.
    if(line MATCHES "^([^ @]+)[^ ]* ([A-Za-z])" AND NOT CMAKE_MATCH_2 STREQUAL "A")
        list(APPEND found ${CMAKE_MATCH_1})
    endif()
endforeach()
list(SORT expected)
list(SORT found)
if(NOT found STREQUAL expected)
    set(missing ${expected})
    list(REMOVE_ITEM missing ${found})
    list(REMOVE_ITEM found ${expected})
    message(FATAL_ERROR "not exported: ${missing}\nexported beyond the interface: ${found}")
endif()
