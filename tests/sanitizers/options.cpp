// How the sanitizers behave in every test program, however it is started. Only third-party code is
// suppressed; the canary tests show that ours is still seen.

// The sanitizers' own library looks for these in the program.
#define FOUND_BY_SANITIZER __attribute__((visibility("default")))

extern "C" {

FOUND_BY_SANITIZER const char* __asan_default_options() {
    return "detect_stack_use_after_return=1:check_initialization_order=1:strict_init_order=1";
}

FOUND_BY_SANITIZER const char* __ubsan_default_options() {
    return "print_stacktrace=1";
}

FOUND_BY_SANITIZER const char* __lsan_default_options() {
    return "suppressions=" KXQTS_SUPPRESSIONS "/lsan.supp:print_suppressions=0";
}

FOUND_BY_SANITIZER const char* __tsan_default_options() {
    return "suppressions=" KXQTS_SUPPRESSIONS "/tsan.supp:print_suppressions=0";
}

} // extern "C"
