// What the calls do that take every kind of handle.

#include "handles/addresses.h"

#include <KxQts/handles/event.h>
#include <KxQts/winapi/files.h>
#include <KxQts/winapi/handles.h>

#include <gtest/gtest.h>

#include <QFile>

#include <cerrno>
#include <cstdint>
#include <memory>

using Korvex::WEvent;

namespace {

HANDLE valueAsHandle(std::uintptr_t value) {
    return reinterpret_cast<HANDLE>(value); // NOLINT(performance-no-int-to-ptr)
}

void expectRefused(HANDLE handle) {
    errno = 0;
    EXPECT_FALSE(CloseHandle(handle));
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(WaitForSingleObject(handle, 0), WAIT_FAILED);
    EXPECT_EQ(WaitForSingleObject(handle, INFINITE), WAIT_FAILED);
}

} // namespace

TEST(Handle, NullIsRefused) {
    expectRefused(nullptr);
    EXPECT_FALSE(SetEvent(nullptr));
    EXPECT_FALSE(WEvent::dispose(nullptr));
    EXPECT_EQ(WEvent::wait(nullptr, 0), WAIT_FAILED);
}

TEST(Handle, AllOnesAreRefusedUnread) {
    expectRefused(INVALID_HANDLE_VALUE);
    auto* event = static_cast<WEvent*>(INVALID_HANDLE_VALUE);
    EXPECT_FALSE(SetEvent(event));
    EXPECT_FALSE(WEvent::dispose(event));
    EXPECT_EQ(WEvent::wait(event, 0), WAIT_FAILED);
}

TEST(Handle, PredefinedRegistryRootsAreRefusedUnread) {
    for (std::uintptr_t root = 0x80000000; root <= 0x80000006; ++root)
        expectRefused(valueAsHandle(root));
}

TEST(Handle, EventLogIsRefusedUnread) {
    expectRefused(valueAsHandle(Korvex::HandleAddresses::eventSource));
}

TEST(Handle, RecordsThatAreNoTaggedObjectsAreRefusedUnread) {
    void* record = Korvex::HandleAddresses::take(Korvex::HandleAddresses::Use::Record);
    expectRefused(record);
    Korvex::HandleAddresses::giveBack(record);
    expectRefused(record);
}

TEST(Handle, AnAddressInsideAHandleObjectIsRefusedUnread) {
    HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    expectRefused(static_cast<char*>(event) + 8);
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Handle, ObjectsWithUnknownTagsAreRefused) {
    QObject object;
    expectRefused(&object);
    object.setObjectName("wevent");
    expectRefused(&object);
    object.setObjectName("WEvents");
    expectRefused(&object);
}

TEST(Handle, AnUnregisteredObjectWithTheTagOfEventsIsFoundNowhere) {
    QObject object;
    object.setObjectName("WEvent");
    errno = 99;
    EXPECT_FALSE(CloseHandle(&object));
    EXPECT_EQ(errno, 99) << "the registry says no, not the tag";
    EXPECT_EQ(WaitForSingleObject(&object, 0), WAIT_FAILED);
    EXPECT_FALSE(SetEvent(&object));
}

TEST(Handle, TheTagDecidesWhatAHandleIs) {
    auto* event = static_cast<WEvent*>(CreateEventA(nullptr, FALSE, TRUE, nullptr));
    event->setObjectName("something else");
    expectRefused(event);
    event->setObjectName(WEvent::sObjName);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Handle, AnEventThatAClientMadeIsAHandle) {
    WEvent onTheStack(true);
    EXPECT_EQ(onTheStack.objectName(), "WEvent");
    EXPECT_EQ(WaitForSingleObject(&onTheStack, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(SetEvent(&onTheStack));
    EXPECT_EQ(onTheStack.wait(0), WAIT_OBJECT_0);
    EXPECT_EQ(onTheStack.wait(0x80000000u), WAIT_FAILED);

    auto onTheHeap = std::make_unique<WEvent>(false);
    EXPECT_TRUE(onTheHeap->set());
    EXPECT_EQ(WaitForSingleObject(onTheHeap.get(), 0), WAIT_OBJECT_0);
    HANDLE gone = onTheHeap.get();
    onTheHeap.reset();
    EXPECT_FALSE(SetEvent(gone));
}

TEST(Handle, ReferencesAreGivenUpOneByOne) {
    auto* event = static_cast<WEvent*>(CreateEventA(nullptr, FALSE, FALSE, nullptr));
    EXPECT_EQ(event->refCount, 1);
    ++event->refCount;
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_EQ(event->refCount, 1);
    EXPECT_TRUE(SetEvent(event));
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_FALSE(CloseHandle(event));
}

TEST(Handle, ACountBelowZeroIsReportedAndTheObjectGoes) {
    auto* event = static_cast<WEvent*>(CreateEventA(nullptr, FALSE, FALSE, nullptr));
    event->refCount = 0;
    EXPECT_FALSE(CloseHandle(event));
    EXPECT_FALSE(SetEvent(event));
}

TEST(Handle, TheRegistryHoldsLiveObjectsInTheOrderOfTheirCreation) {
    const auto& events = WEvent::sObjectList;
    EXPECT_TRUE(events.isEmpty());
    HANDLE first = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HANDLE second = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HANDLE third = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    ASSERT_EQ(events.size(), 3u);
    EXPECT_EQ(events.at(0), first);
    EXPECT_EQ(events.at(2), third);
    EXPECT_EQ(events.at(3), nullptr);
    EXPECT_TRUE(CloseHandle(second));
    EXPECT_EQ(std::vector<HANDLE>(events.begin(), events.end()),
              (std::vector<HANDLE>{first, third}));
    EXPECT_FALSE(events.contains(static_cast<WEvent*>(second)));
    EXPECT_TRUE(CloseHandle(first));
    EXPECT_TRUE(CloseHandle(third));
    EXPECT_TRUE(events.isEmpty());
}

TEST(Handle, AFileIsNotWaitedFor) {
    HANDLE file = CreateFileA("/etc/passwd", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(WaitForSingleObject(file, INFINITE), WAIT_FAILED);
    EXPECT_TRUE(CloseHandle(file));
    expectRefused(file);
}

TEST(Handle, AFileThatAClientMadeAndTaggedIsAHandle) {
    auto* file = new QFile("/etc/passwd");
    ASSERT_TRUE(file->open(QIODevice::ReadOnly));
    expectRefused(file);
    file->setObjectName("QFile");
    char letter = 0;
    EXPECT_TRUE(ReadFile(file, &letter, 1, nullptr, nullptr));
    EXPECT_TRUE(CloseHandle(file));
    expectRefused(file);
}
