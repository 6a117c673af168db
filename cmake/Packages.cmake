# Debian packages, made by "cpack --preset packages". What is installed without a component goes into
# the first of them, so a new tool needs nothing here.
#   kxqts      the library with its tools
#   kxqts-dev  what building programs needs
#   kxqtsd     the root daemon

set(KXQTS_DEBIAN ${CMAKE_CURRENT_LIST_DIR}/debian)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kxqts)
set(CPACK_PACKAGE_VENDOR KxQts)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Windows programming interface on Qt")
set(CPACK_PACKAGE_CONTACT "KxQts developers <kxqts@korvex.com>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development daemon)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/PackageFiles.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(KXQTS_SAME_LIBRARY "kxqts (= ${PROJECT_VERSION})")

set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
    "Programs written for Windows build and run unchanged with this library:\n\
files, handles, events, threads, processes, registry, disks and more. This\n\
package holds the library and the tools that show what it sees and keeps.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME kxqts)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${KXQTS_DEBIAN}/library/postrm)

set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Development files: headers, CMake package, pkg-config modules and the\n\
compiler wrapper kxcc, for building programs with the library of kxqts.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME kxqts-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${KXQTS_SAME_LIBRARY}, g++, qt6-base-dev")

set(CPACK_COMPONENT_DAEMON_DESCRIPTION
    "Root daemon: runs privileged commands and changes the machine-wide registry\n\
for programs that use the library of kxqts, of administrators only.")
set(CPACK_DEBIAN_DAEMON_PACKAGE_NAME kxqtsd)
set(CPACK_DEBIAN_DAEMON_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_DAEMON_PACKAGE_DEPENDS "${KXQTS_SAME_LIBRARY}, init-system-helpers (>= 1.54~)")
set(CPACK_DEBIAN_DAEMON_PACKAGE_CONTROL_EXTRA
    ${KXQTS_DEBIAN}/daemon/postinst ${KXQTS_DEBIAN}/daemon/prerm ${KXQTS_DEBIAN}/daemon/postrm)

# What every package says about itself.
foreach(package library:kxqts development:kxqts-dev daemon:kxqtsd)
    string(REGEX MATCH "(.*):(.*)" _ ${package})
    install(
        FILES ${KXQTS_DEBIAN}/copyright ${KXQTS_DEBIAN}/changelog
        DESTINATION share/doc/${CMAKE_MATCH_2}
        COMPONENT ${CMAKE_MATCH_1})
    if(EXISTS ${KXQTS_DEBIAN}/${CMAKE_MATCH_1}/lintian-overrides)
        install(
            FILES ${KXQTS_DEBIAN}/${CMAKE_MATCH_1}/lintian-overrides
            DESTINATION share/lintian/overrides
            COMPONENT ${CMAKE_MATCH_1}
            RENAME ${CMAKE_MATCH_2})
    endif()
endforeach()

include(CPack)
