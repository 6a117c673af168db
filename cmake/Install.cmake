# What is installed, and how clients find it. Nothing of it knows the prefix: a prefix may be moved as
# a whole.

include(CMakePackageConfigHelpers)

set(KXQTS_PACKAGEDIR lib/cmake/KxQts)
set(KXQTS_TEMPLATES ${CMAKE_CURRENT_LIST_DIR})

install(
    TARGETS KxQts kxqts_windows kxmain
    EXPORT KxQtsTargets
    LIBRARY DESTINATION ${KXQTS_LIBDIR}
    ARCHIVE DESTINATION ${KXQTS_LIBDIR} COMPONENT development)
install(
    EXPORT KxQtsTargets
    NAMESPACE KxQts::
    DESTINATION ${KXQTS_PACKAGEDIR}
    COMPONENT development)
install(
    DIRECTORY include/KxQts
    DESTINATION include
    COMPONENT development)

configure_package_config_file(
    ${KXQTS_TEMPLATES}/KxQtsConfig.cmake.in ${PROJECT_BINARY_DIR}/KxQtsConfig.cmake
    INSTALL_DESTINATION ${KXQTS_PACKAGEDIR}
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KxQtsConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(
    FILES ${PROJECT_BINARY_DIR}/KxQtsConfig.cmake ${PROJECT_BINARY_DIR}/KxQtsConfigVersion.cmake
    DESTINATION ${KXQTS_PACKAGEDIR}
    COMPONENT development)

foreach(module kxqts kxqts-windows)
    configure_file(${KXQTS_TEMPLATES}/${module}.pc.in ${PROJECT_BINARY_DIR}/${module}.pc @ONLY)
    install(
        FILES ${PROJECT_BINARY_DIR}/${module}.pc
        DESTINATION lib/pkgconfig
        COMPONENT development)
endforeach()

# The compiler wrapper finds the library from its own place, and Qt where this build found it.
function(kxqts_quote_lines result)
    list(REMOVE_DUPLICATES ARGN)
    list(TRANSFORM ARGN PREPEND "    \"")
    list(TRANSFORM ARGN APPEND "\"")
    list(JOIN ARGN "\n" lines)
    set(${result} "${lines}" PARENT_SCOPE)
endfunction()

function(kxqts_find_qt)
    set(includes "")
    foreach(module Core Network Gui Widgets)
        get_target_property(directories Qt6::${module} INTERFACE_INCLUDE_DIRECTORIES)
        list(APPEND includes ${directories})
    endforeach()
    get_target_property(core Qt6::Core LOCATION)
    get_filename_component(directory ${core} DIRECTORY)
    set(link_flags "")
    if(NOT directory IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
        list(APPEND link_flags -L${directory} -Wl,-rpath,${directory})
    endif()
    list(APPEND link_flags -lQt6Network -lQt6Core)
    kxqts_quote_lines(KXQTS_QT_INCLUDES ${includes})
    kxqts_quote_lines(KXQTS_QT_LINK_FLAGS ${link_flags})
    set(KXQTS_QT_INCLUDES "${KXQTS_QT_INCLUDES}" PARENT_SCOPE)
    set(KXQTS_QT_LINK_FLAGS "${KXQTS_QT_LINK_FLAGS}" PARENT_SCOPE)
endfunction()

kxqts_find_qt()
configure_file(${KXQTS_TEMPLATES}/kxcc.in ${PROJECT_BINARY_DIR}/kxcc @ONLY)
install(
    PROGRAMS ${PROJECT_BINARY_DIR}/kxcc
    DESTINATION bin
    COMPONENT development)
install(
    FILES ${KXQTS_TEMPLATES}/kxcc.1
    DESTINATION share/man/man1
    COMPONENT development)
