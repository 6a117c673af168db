# The locales that text conversion is tested and fuzzed in, and what lets a program use them.
include_guard(GLOBAL)

set(KXQTS_TEST_LOCALES ${PROJECT_BINARY_DIR}/locales)
set(locales ${PROJECT_SOURCE_DIR}/tests/common)
add_custom_command(
    OUTPUT ${KXQTS_TEST_LOCALES}/stamp
    COMMAND ${locales}/makelocales.sh ${KXQTS_TEST_LOCALES}
    COMMAND ${CMAKE_COMMAND} -E touch ${KXQTS_TEST_LOCALES}/stamp
    DEPENDS ${locales}/makelocales.sh
    COMMENT "Making the locales for the tests"
    VERBATIM)
add_library(kxqts_test_locales OBJECT ${locales}/locales.cpp ${KXQTS_TEST_LOCALES}/stamp)
target_include_directories(kxqts_test_locales PUBLIC ${PROJECT_SOURCE_DIR}/tests)
target_compile_definitions(kxqts_test_locales PRIVATE KXQTS_TEST_LOCALES="${KXQTS_TEST_LOCALES}")
target_link_libraries(kxqts_test_locales PRIVATE kxqts_options)
