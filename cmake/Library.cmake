# libKxQts.so, what is installed with it, and how clients find it.

set(KXQTS_LIBDIR lib/Korvex)

add_library(KxQts SHARED $<TARGET_OBJECTS:kxqts_objects>)
add_library(KxQts::KxQts ALIAS KxQts)
target_link_libraries(KxQts PUBLIC Qt6::Core Qt6::Network PRIVATE Threads::Threads ${CMAKE_DL_LIBS}
                                                                  kxqts_options)
target_include_directories(KxQts PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
                                        $<INSTALL_INTERFACE:include>)
kxqts_use_widget_headers(KxQts)
# The library's calls of its own exported names must not end in a client's function of that name.
target_link_options(KxQts PRIVATE -Wl,-Bsymbolic-functions -Wl,--as-needed)
if(NOT KXQTS_SANITIZE)
    target_link_options(KxQts PRIVATE -Wl,--no-undefined)
endif()
set_target_properties(KxQts PROPERTIES OUTPUT_NAME KxQts LIBRARY_OUTPUT_DIRECTORY
                                                         ${CMAKE_CURRENT_BINARY_DIR}/lib)
