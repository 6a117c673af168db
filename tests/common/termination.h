#pragma once

#if defined(__SANITIZE_ADDRESS__)
extern "C" void __asan_handle_no_return();
#endif

namespace KxTest {

/// For the outermost scope of a thread that is terminated: tells AddressSanitizer, which does not
/// follow the unwinding, that the scopes further in have ended.
struct TerminatedThread {
    TerminatedThread() = default;
    ~TerminatedThread() {
#if defined(__SANITIZE_ADDRESS__)
        __asan_handle_no_return();
#endif
    }
    TerminatedThread(const TerminatedThread&) = delete;
    TerminatedThread& operator=(const TerminatedThread&) = delete;
};

} // namespace KxTest
