# The options that every object of this project is built with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)

if(PROJECT_IS_TOP_LEVEL)
    find_program(KXQTS_CCACHE ccache)
    mark_as_advanced(KXQTS_CCACHE)
    if(KXQTS_CCACHE)
        set(CMAKE_C_COMPILER_LAUNCHER ${KXQTS_CCACHE})
        set(CMAKE_CXX_COMPILER_LAUNCHER ${KXQTS_CCACHE})
    endif()
endif()

# g++ 12 sees overlapping copies in every "literal" + std::string (GCC bug 105329), so -Wrestrict is off.
add_library(kxqts_options INTERFACE)
target_compile_features(kxqts_options INTERFACE cxx_std_20)
target_compile_options(
    kxqts_options
    INTERFACE -Wall -Wextra -Wpedantic -Wshadow
              $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>

              $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>
              $<$<BOOL:${KXQTS_WERROR}>:-Werror>
              -fvisibility=hidden
              $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>)
# Some file systems and kernels count in 64 bits whatever the width of a pointer.
target_compile_definitions(kxqts_options INTERFACE _FILE_OFFSET_BITS=64)

if(KXQTS_SANITIZE)
    target_compile_options(kxqts_options INTERFACE -fsanitize=${KXQTS_SANITIZE}
                                                   -fno-omit-frame-pointer
                                                   -fno-sanitize-recover=all)
    target_link_options(kxqts_options INTERFACE -fsanitize=${KXQTS_SANITIZE})
endif()

# The message-box enumerations live in a header of Qt's widget module. Only its headers are used; the
# module is never linked.
function(kxqts_use_widget_headers target)
    foreach(module Qt6::Gui Qt6::Widgets)
        get_target_property(directories ${module} INTERFACE_INCLUDE_DIRECTORIES)
        list(TRANSFORM directories REPLACE "(.+)" "$<BUILD_INTERFACE:\\1>")
        target_include_directories(${target} SYSTEM PUBLIC ${directories})
    endforeach()
endfunction()
