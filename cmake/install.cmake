# SPDX-License-Identifier: MIT
# What an installation holds: the headers, libux, the PC stand-in for the chip, and what lets other
# builds find them (a CMake package, ux.pc and
# ux-bitmap.pc). Included after both libraries are defined.

set(UX_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ux)

install(FILES ${PROJECT_SOURCE_DIR}/include/ux.h ${PROJECT_SOURCE_DIR}/include/ux_bitmap.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(TARGETS ux em862x-host EXPORT ux-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})

install(EXPORT ux-targets NAMESPACE ux:: FILE ux-targets.cmake DESTINATION ${UX_CMAKE_DIR})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ux-config.cmake.in
    ${PROJECT_BINARY_DIR}/ux-config.cmake INSTALL_DESTINATION ${UX_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ux-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ux-config.cmake ${PROJECT_BINARY_DIR}/ux-config-version.cmake
    DESTINATION ${UX_CMAKE_DIR})

# ux.pc finds its prefix from its own place, so an installed tree can be moved as a whole.
set(UX_PC_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE "${UX_PC_DIR}")
    set(UX_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
    file(RELATIVE_PATH UX_PC_UP "/prefix/${UX_PC_DIR}" "/prefix")
    string(REGEX REPLACE "/$" "" UX_PC_UP "${UX_PC_UP}")
    set(UX_PC_PREFIX "\${pcfiledir}/${UX_PC_UP}")
endif()
foreach(kind LIB INCLUDE)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}DIR}")
        set(UX_PC_${kind}DIR "${CMAKE_INSTALL_${kind}DIR}")
    else()
        set(UX_PC_${kind}DIR "\${prefix}/${CMAKE_INSTALL_${kind}DIR}")
    endif()
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/ux.pc.in ${PROJECT_BINARY_DIR}/ux.pc @ONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/ux-bitmap.pc.in ${PROJECT_BINARY_DIR}/ux-bitmap.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ux.pc ${PROJECT_BINARY_DIR}/ux-bitmap.pc
    DESTINATION ${UX_PC_DIR})
