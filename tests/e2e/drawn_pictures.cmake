# SPDX-License-Identifier: MIT
# Draws the pictures of an example anew and compares them, byte for byte, with those that ship.

file(REMOVE_RECURSE ${DRAWN})
execute_process(COMMAND ${TOOL} ${DRAWN} COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE drawn RELATIVE ${DRAWN} ${DRAWN}/*)
file(GLOB_RECURSE shipped RELATIVE ${SHIPPED} ${SHIPPED}/*.png ${SHIPPED}/*.jpg)
if(NOT drawn STREQUAL shipped)
    message(FATAL_ERROR "the tool draws ${drawn}, the example ships ${shipped}")
endif()
foreach(name IN LISTS drawn)
    file(SHA256 ${DRAWN}/${name} drawn_sum)
    file(SHA256 ${SHIPPED}/${name} shipped_sum)
    if(NOT drawn_sum STREQUAL shipped_sum)
        message(FATAL_ERROR "${DRAWN}/${name} is not ${SHIPPED}/${name}")
    endif()
endforeach()
