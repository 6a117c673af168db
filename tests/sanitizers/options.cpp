// How the sanitizers behave in every test program, however it is started. Only third-party code is
// suppressed; the canary tests show that ours is still seen. Memory that there is not is null or an
// exception, as without them: what then happens is tested.

#ifndef KXQTS_TSAN_OPTIONS
#define KXQTS_TSAN_OPTIONS "" // what a test program wants in addition
#endif

// Visible whatever the compiler's default is: the sanitizers look these up by name at run time.
#pragma GCC visibility push(default)

extern "C" {

const char* __asan_default_options() {
    return "detect_stack_use_after_return=1:check_initialization_order=1:strict_init_order=1:"
           "allocator_may_return_null=1";
}

const char* __ubsan_default_options() {
    return "print_stacktrace=1";
}

const char* __lsan_default_options() {
    return "suppressions=" KXQTS_SUPPRESSIONS "/lsan.supp:print_suppressions=0";
}

const char* __tsan_default_options() {
    return "suppressions=" KXQTS_SUPPRESSIONS
           "/tsan.supp:print_suppressions=0:allocator_may_return_null=1:" KXQTS_TSAN_OPTIONS;
}

} // extern "C"

#pragma GCC visibility pop
