#pragma once

#include "platform/diskarbiter.h"
#include "platform/replaceable.h"

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace KxTest {

/// An arbiter of the disks that a test names. It is in force while it lives; its destructor waits
/// for the callbacks.
class FakeArbiter final : public Korvex::DiskArbiter {
public:
    FakeArbiter() = default;
    ~FakeArbiter() override;

    __DASession* createSession() override;

    /// Puts a disk there. \return Its description, to be filled; it is the arbiter's.
    CFMutableDictionaryRef addDisk(const std::string& name);
    /// Puts a disk there that cannot be described.
    void addBareDisk(const std::string& name);

    static void set(CFMutableDictionaryRef description, const char* key, CFTypeRef value);
    static void set(CFMutableDictionaryRef description, const char* key, const char* text);
    static void set(CFMutableDictionaryRef description, const char* key, long long number);
    static void setPath(CFMutableDictionaryRef description, const char* key,
                        const std::string& path);

    bool hasSessions = true;
    DAReturn answer = kDAReturnSuccess; ///< To mounting and unmounting
    bool answersAtOnce = false;         ///< Before the operation returns, on another thread
    bool isSilent = false;              ///< Until \ref answerNow

    /// Gives the answers that were held back.
    void answerNow();

    /// What was asked for, in order: "mount disk1 options 1 at /there".
    [[nodiscard]] std::vector<std::string> requests();
    [[nodiscard]] int liveObjects() const { return live; } ///< Disks and sessions

private:
    friend class FakeDisk;
    friend class FakeSession;

    struct Request {
        __DADisk* disk;
        DADiskCallback callback;
        void* context;
    };
    void take(const std::string& text, const Request& request);
    void deliver(const Request& request);
    void note(const std::string& text);

    std::map<std::string, CFMutableDictionaryRef> disks; // null: not to be described
    std::mutex mutex;                                    // guards what follows
    std::vector<std::string> requested;
    std::vector<Request> held;
    std::vector<std::thread> threads;
    std::atomic<int> live{0};
    Korvex::Replacement<Korvex::DiskArbiter> inForce{*this};
};

} // namespace KxTest
