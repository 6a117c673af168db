# libKxQts.so, as the build tree has it. Install.cmake says what becomes of it on installation.

set(KXQTS_LIBDIR lib/Korvex) # below the prefix
set(KXQTS_HELPER ${CMAKE_INSTALL_PREFIX}/${KXQTS_LIBDIR}/kxqts-run) # what polkit's policy names

# The log that is open from the start is the library's own: programs made of its objects have none.
add_library(KxQts SHARED $<TARGET_OBJECTS:kxqts_objects> messages/defaultlog.cpp)
target_include_directories(KxQts PRIVATE ${PROJECT_SOURCE_DIR})
add_library(KxQts::KxQts ALIAS KxQts)
# Installed clients get Qt's modules from the package's own search for Qt, so that programs in C need
# none.
target_link_libraries(
    KxQts
    PUBLIC $<BUILD_INTERFACE:Qt6::Core> $<BUILD_INTERFACE:Qt6::Network>
    PRIVATE Threads::Threads ${CMAKE_DL_LIBS} kxqts_options)
target_include_directories(KxQts PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                                        $<INSTALL_INTERFACE:include>)
kxqts_use_widget_headers(KxQts)
target_compile_features(KxQts PUBLIC $<BUILD_INTERFACE:cxx_std_20>)
# The library's calls of its own exported names must not end in a client's function of that name.
target_link_options(KxQts PRIVATE -Wl,-Bsymbolic-functions -Wl,--as-needed
                    -Wl,--version-script=${CMAKE_CURRENT_LIST_DIR}/exports.map)
if(NOT KXQTS_SANITIZE)
    target_link_options(KxQts PRIVATE -Wl,--no-undefined)
endif()
set_target_properties(
    KxQts
    PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib
               LINK_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/exports.map
               INSTALL_RPATH_USE_LINK_PATH ON)

# What a source written for Windows needs beside the library: the headers under their Windows names,
# a main function where it has wmain, and printing in wide text. The C library shows what it has beyond
# standard C only when asked.
add_library(kxqts_windows INTERFACE)
add_library(KxQts::Windows ALIAS kxqts_windows)
set_target_properties(kxqts_windows PROPERTIES EXPORT_NAME Windows)
target_include_directories(
    kxqts_windows INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include/KxQts/windows>
                            $<INSTALL_INTERFACE:include/KxQts/windows>)
target_compile_definitions(kxqts_windows INTERFACE _DEFAULT_SOURCE)
target_link_libraries(kxqts_windows INTERFACE KxQts kxmain)

# Everything that is installed, as one target. Who installs something more adds it here.
add_custom_target(kxqts_installed DEPENDS KxQts kxmain)
