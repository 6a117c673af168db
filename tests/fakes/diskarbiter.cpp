#include "fakes/diskarbiter.h"

#include "platform/referencecounted.h"

#include <array>

namespace KxTest {

class FakeDisk final : public Korvex::ReferenceCounted<__DADisk> {
public:
    FakeDisk(FakeArbiter& of, std::string called) : arbiter(of), name(std::move(called)) {
        ++arbiter.live;
    }

    CFDictionaryRef copyDescription() override {
        CFMutableDictionaryRef description = arbiter.disks.at(name);
        return description ? CFDictionaryCreateCopy(nullptr, description) : nullptr;
    }

    void mount(CFURLRef path, unsigned long options, DADiskCallback callback,
               void* context) override {
        std::array<UInt8, 512> bytes{};
        if (path)
            CFURLGetFileSystemRepresentation(path, true, bytes.data(),
                                             static_cast<CFIndex>(bytes.size()));
        retain();
        arbiter.take("mount " + name + " options " + std::to_string(options) +
                         (path ? " at " : "") + reinterpret_cast<const char*>(bytes.data()),
                     {this, callback, context});
    }

    void unmount(unsigned long options, DADiskCallback callback, void* context) override {
        retain();
        arbiter.take("unmount " + name + " options " + std::to_string(options),
                     {this, callback, context});
    }

    void unclaim() override { arbiter.note("unclaim " + name); }

private:
    ~FakeDisk() override { --arbiter.live; }

    FakeArbiter& arbiter;
    const std::string name;
};

class FakeSession final : public Korvex::ReferenceCounted<__DASession> {
public:
    explicit FakeSession(FakeArbiter& of) : arbiter(of) { ++arbiter.live; }

    __DADisk* createDisk(const char* name) override {
        return arbiter.disks.contains(name) ? new FakeDisk(arbiter, name) : nullptr;
    }

private:
    ~FakeSession() override { --arbiter.live; }

    FakeArbiter& arbiter;
};

FakeArbiter::~FakeArbiter() {
    answerNow();
    std::vector<std::thread> all;
    {
        const std::lock_guard guard(mutex);
        all.swap(threads);
    }
    for (std::thread& thread : all)
        thread.join();
    for (const auto& [name, description] : disks)
        CFRelease(description);
}

__DASession* FakeArbiter::createSession() {
    return hasSessions ? new FakeSession(*this) : nullptr;
}

CFMutableDictionaryRef FakeArbiter::addDisk(const std::string& name) {
    return disks[name] = CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                                   &kCFTypeDictionaryValueCallBacks);
}

void FakeArbiter::addBareDisk(const std::string& name) {
    disks[name] = nullptr;
}

void FakeArbiter::set(CFMutableDictionaryRef description, const char* key, CFTypeRef value) {
    CFStringRef name = CFStringCreateWithCString(nullptr, key, kCFStringEncodingUTF8);
    CFDictionarySetValue(description, name, value);
    CFRelease(name);
}

void FakeArbiter::set(CFMutableDictionaryRef description, const char* key, const char* text) {
    CFStringRef value = CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8);
    set(description, key, static_cast<CFTypeRef>(value));
    CFRelease(value);
}

void FakeArbiter::set(CFMutableDictionaryRef description, const char* key, long long number) {
    CFNumberRef value = CFNumberCreate(nullptr, kCFNumberLongLongType, &number);
    set(description, key, static_cast<CFTypeRef>(value));
    CFRelease(value);
}

void FakeArbiter::setPath(CFMutableDictionaryRef description, const char* key,
                          const std::string& path) {
    CFURLRef value = CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()),
        true);
    set(description, key, static_cast<CFTypeRef>(value));
    CFRelease(value);
}

void FakeArbiter::note(const std::string& text) {
    const std::lock_guard guard(mutex);
    requested.push_back(text);
}

void FakeArbiter::take(const std::string& text, const Request& request) {
    note(text);
    if (answersAtOnce) {
        std::thread([&] { deliver(request); }).join();
        return;
    }
    const std::lock_guard guard(mutex);
    if (isSilent)
        held.push_back(request);
    else
        threads.emplace_back([this, request] { deliver(request); });
}

void FakeArbiter::deliver(const Request& request) {
    const __DADissenter dissenter{answer};
    if (request.callback)
        request.callback(request.disk, answer == kDAReturnSuccess ? nullptr : &dissenter,
                         request.context);
    request.disk->release();
}

void FakeArbiter::answerNow() {
    const std::lock_guard guard(mutex);
    for (const Request& request : held)
        threads.emplace_back([this, request] { deliver(request); });
    held.clear();
}

std::vector<std::string> FakeArbiter::requests() {
    const std::lock_guard guard(mutex);
    return requested;
}

} // namespace KxTest
