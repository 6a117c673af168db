#include "registry/prefsfixture.h"

#include <KxQts/winapi/handles.h>
#include <KxQts/winapi/registry.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <map>
#include <thread>
#include <vector>

using namespace KxTest;

namespace {

class Registry : public RegistryTest {
protected:
    ~Registry() override {
        for (void* key : openKeys)
            RegCloseKey(key);
    }

    /// A key that is created below one of the roots.
    void* create(void* root, const QString& path, const QString& appId = QString()) {
        void* key = nullptr;
        EXPECT_EQ(regCreateKeyEx(appId, root, path, 0, QString(), 0, 0, nullptr, &key, nullptr),
                  0U);
        openKeys.push_back(key);
        return key;
    }

    static unsigned open(void* root, const QString& path, void** result) {
        return regOpenKeyEx(QString(), root, path, 0, KEY_READ, result);
    }

    static unsigned set(void* key, const QString& name, std::int32_t value) {
        return regSetValueEx(key, name, 0, REG_DWORD, dword(value));
    }

    std::vector<void*> openKeys;
};

// As handles to test with: one that is no key, and one that is not to be written to.
int noKey = 0;
void* const untouched = &noKey;

const std::vector<void*> rootsWithoutStore{HKEY_CLASSES_ROOT,     HKEY_PERFORMANCE_DATA,
                                           HKEY_CURRENT_CONFIG,   HKEY_DYN_DATA,
                                           HKEY_PERFORMANCE_TEXT, HKEY_PERFORMANCE_NLSTEXT};

std::vector<void*> noKeys() {
    std::vector<void*> all = rootsWithoutStore;
    all.insert(all.end(), {HKEY_USERS, nullptr, INVALID_HANDLE_VALUE, untouched});
    return all;
}

} // namespace

TEST_F(Registry, PredefinedKeysHaveTheValuesOfWindowsZeroExtended) {
    const std::map<std::uintptr_t, void*> keys{
        {0x80000000U, HKEY_CLASSES_ROOT},       {0x80000001U, HKEY_CURRENT_USER},
        {0x80000002U, HKEY_LOCAL_MACHINE},      {0x80000003U, HKEY_USERS},
        {0x80000004U, HKEY_PERFORMANCE_DATA},   {0x80000005U, HKEY_CURRENT_CONFIG},
        {0x80000006U, HKEY_DYN_DATA},           {0x80000050U, HKEY_PERFORMANCE_TEXT},
        {0x80000060U, HKEY_PERFORMANCE_NLSTEXT}};
    for (const auto& [value, key] : keys)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(key), value);
}

TEST_F(Registry, ACreatedKeyExistsWithItsFirstValue) {
    void* key = nullptr;
    unsigned disposition = 0;
    EXPECT_EQ(regCreateKeyEx(QString(), HKEY_LOCAL_MACHINE, "A/B", 0, "class", 0, KEY_ALL_ACCESS,
                             nullptr, &key, &disposition),
              0U);
    EXPECT_EQ(disposition, 1U);
    void* again = untouched;
    EXPECT_EQ(open(HKEY_LOCAL_MACHINE, "A/B", &again), 1010U);
    EXPECT_EQ(again, untouched) << "a failed open leaves the result alone";
    EXPECT_EQ(set(key, "v", 5), 0U);
    EXPECT_EQ(open(HKEY_LOCAL_MACHINE, "A/B", &again), 0U);
    EXPECT_EQ(RegCloseKey(again), 0U);
    EXPECT_EQ(regCreateKeyEx(QString(), HKEY_LOCAL_MACHINE, "A/B", 0, QString(), 0, 0, nullptr,
                             &again, &disposition),
              0U);
    EXPECT_EQ(disposition, 2U);
    EXPECT_EQ(RegCloseKey(again), 0U);
    EXPECT_EQ(RegCloseKey(key), 0U);
}

TEST_F(Registry, ValuesAreWrittenReadAndDeleted) {
    void* key = create(HKEY_LOCAL_MACHINE, "K");
    QByteArray data;
    unsigned type = 0;
    unsigned reserved = 99;
    EXPECT_EQ(regQueryValueEx(key, "v", nullptr, &type, data), 1010U);
    EXPECT_EQ(regSetValueEx(key, "v", 0, REG_SZ, units("text")), 0U);
    EXPECT_EQ(regQueryValueEx(key, "v", &reserved, &type, data), 0U);
    EXPECT_EQ(type, 1U);
    EXPECT_EQ(data, units("text"));
    EXPECT_EQ(reserved, 99U);
    EXPECT_EQ(regQueryValueEx(key, "v", nullptr, nullptr, data), 0U);
    EXPECT_EQ(regSetValueEx(key, "v", 0, REG_MULTI_SZ, "x"), 1010U);
    EXPECT_EQ(regDeleteValue(key, "v"), 0U);
    EXPECT_EQ(regDeleteValue(key, "v"), 1010U);
}

TEST_F(Registry, TheRootsHaveTheirScopesAndTheMachinesItsApplications) {
    set(create(HKEY_LOCAL_MACHINE, "K"), "v", 1);
    EXPECT_TRUE(std::filesystem::exists(machineFile()));
    set(create(HKEY_LOCAL_MACHINE, "K", "com.example.app"), "v", 2);
    EXPECT_TRUE(std::filesystem::exists(machineFile("com.example.app")));
    set(create(HKEY_CURRENT_USER, "K", "com.example.ignored"), "v", 3);
    EXPECT_TRUE(std::filesystem::exists(userFile()));
    EXPECT_FALSE(std::filesystem::exists(machineFile("com.example.ignored")));
    EXPECT_FALSE(std::filesystem::exists(userFile().parent_path() / "com.example.ignored.plist"));
}

TEST_F(Registry, BelowAnOpenKeyTheResultIsAnErrorAndTheHandleCounts) {
    void* parent = create(HKEY_CURRENT_USER, "A");
    set(parent, "v", 1);
    void* child = nullptr;
    unsigned disposition = 0;
    EXPECT_EQ(
        regCreateKeyEx("ignored", parent, "B", 0, QString(), 0, 0, nullptr, &child, &disposition),
        1010U);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(disposition, 1U);
    EXPECT_EQ(set(child, "w", 2), 0U);
    void* opened = nullptr;
    EXPECT_EQ(open(parent, "B", &opened), 1010U);
    ASSERT_NE(opened, nullptr);
    QByteArray data;
    EXPECT_EQ(regQueryValueEx(opened, "w", nullptr, nullptr, data), 0U);
    EXPECT_EQ(RegCloseKey(opened), 0U);
    EXPECT_EQ(RegCloseKey(child), 0U);
    opened = untouched;
    EXPECT_EQ(open(parent, "missing", &opened), 1010U);
    EXPECT_EQ(opened, untouched);
    EXPECT_TRUE(std::filesystem::exists(userFile())) << "in the parent's scope";
    EXPECT_FALSE(std::filesystem::exists(machineFile()));
}

TEST_F(Registry, BelowAnOpenKeyAnEmptyNameIsAKeyOfItsOwn) {
    void* parent = create(HKEY_LOCAL_MACHINE, "A");
    set(parent, "v", 1);
    void* child = nullptr;
    EXPECT_EQ(open(parent, "", &child), 1010U);
    ASSERT_NE(child, nullptr) << "its path is that of the parent and a slash";
    EXPECT_EQ(RegCloseKey(child), 0U);
}

TEST_F(Registry, WithoutAPlaceForTheResultTheArgumentsAreBad) {
    EXPECT_EQ(open(HKEY_LOCAL_MACHINE, "A", nullptr), 160U);
    EXPECT_EQ(open(HKEY_USERS, "A", nullptr), 160U) << "before anything else is looked at";
    EXPECT_EQ(regCreateKeyEx(QString(), HKEY_CURRENT_USER, "A", 0, QString(), 0, 0, nullptr,
                             nullptr, nullptr),
              160U);
}

TEST_F(Registry, WhatIsNoKeyIsRefusedByEverything) {
    for (void* handle : noKeys()) {
        void* key = untouched;
        QByteArray data;
        QString name;
        EXPECT_EQ(open(handle, "A", &key), 1010U);
        EXPECT_EQ(
            regCreateKeyEx(QString(), handle, "A", 0, QString(), 0, 0, nullptr, &key, nullptr),
            1010U);
        EXPECT_EQ(key, untouched);
        EXPECT_EQ(regQueryValueEx(handle, "v", nullptr, nullptr, data), 1010U);
        EXPECT_EQ(set(handle, "v", 1), 1010U);
        EXPECT_EQ(regDeleteValue(handle, "v"), 1010U);
        EXPECT_EQ(regDeleteKey(QString(), handle, "A"), 1010U);
        EXPECT_EQ(regEnumKey(QString(), handle, 0, name), 1010U);
    }
}

TEST_F(Registry, ValuesAreReachedThroughOpenKeysOnly) {
    for (void* root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        QByteArray data;
        EXPECT_EQ(regQueryValueEx(root, "v", nullptr, nullptr, data), 1010U);
        EXPECT_EQ(set(root, "v", 1), 1010U);
        EXPECT_EQ(regDeleteValue(root, "v"), 1010U);
    }
    EXPECT_FALSE(std::filesystem::exists(machineFile()));
}

TEST_F(Registry, KeysAreDeletedBelowRootsAndOpenKeys) {
    void* key = create(HKEY_LOCAL_MACHINE, "A");
    set(create(HKEY_LOCAL_MACHINE, "A/B/C"), "v", 1);
    set(create(HKEY_CURRENT_USER, "U"), "v", 1);
    set(create(HKEY_LOCAL_MACHINE, "P", "com.example.app"), "v", 1);
    EXPECT_EQ(regDeleteKey(QString(), key, "B/C"), 0U);
    EXPECT_EQ(regDeleteKey(QString(), key, "B/C"), 1010U);
    EXPECT_EQ(regDeleteKey(QString(), HKEY_LOCAL_MACHINE, "U"), 1010U);
    EXPECT_EQ(regDeleteKey(QString(), HKEY_CURRENT_USER, "U"), 0U);
    EXPECT_EQ(regDeleteKey(QString(), HKEY_LOCAL_MACHINE, "A"), 0U);
    EXPECT_EQ(regDeleteKey(QString(), HKEY_LOCAL_MACHINE, "P"), 1010U);
    EXPECT_EQ(regDeleteKey("com.example.app", HKEY_LOCAL_MACHINE, "P"), 0U);
}

TEST_F(Registry, SubKeysAndValuesAreEnumerated) {
    void* key = create(HKEY_LOCAL_MACHINE, "A");
    set(key, "value", 1);
    set(create(HKEY_LOCAL_MACHINE, "A/key"), "v", 1);
    QString name;
    EXPECT_EQ(regEnumKey(QString(), key, 0, name), 0U);
    EXPECT_EQ(name, "value");
    EXPECT_EQ(regEnumKey(QString(), key, 1, name), 0U);
    EXPECT_EQ(name, "key");
    EXPECT_EQ(regEnumKey(QString(), key, 2, name), 1010U) << "the index equal to the count";
    EXPECT_EQ(name, "");
    EXPECT_EQ(regEnumKey(QString(), HKEY_LOCAL_MACHINE, 0, name), 1010U)
        << "a root itself has nothing to enumerate";
    EXPECT_EQ(regEnumKey(QString(), HKEY_CURRENT_USER, 0, name), 1010U);
}

TEST_F(Registry, ClosingTwiceIsAnError) {
    void* key = create(HKEY_LOCAL_MACHINE, "A");
    openKeys.clear();
    EXPECT_EQ(RegCloseKey(key), 0U);
    EXPECT_EQ(RegCloseKey(key), 6U);
    EXPECT_EQ(set(key, "v", 1), 1010U);
}

TEST_F(Registry, PredefinedKeysNeedNoClosing) {
    for (void* root : rootsWithoutStore)
        EXPECT_EQ(RegCloseKey(root), 0U);
    EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), 0U);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), 0U);
    EXPECT_EQ(RegCloseKey(HKEY_USERS), 6U);
    EXPECT_EQ(RegCloseKey(nullptr), 6U);
    EXPECT_EQ(RegCloseKey(INVALID_HANDLE_VALUE), 6U);
    EXPECT_EQ(RegCloseKey(untouched), 6U);
}

TEST_F(Registry, AnOpenOfARootGivesAHandleThatServesNothing) {
    for (void* root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        void* key = nullptr;
        unsigned disposition = 99;
        EXPECT_EQ(open(root, "", &key), 0U);
        ASSERT_NE(key, nullptr);
        QByteArray data;
        EXPECT_EQ(set(key, "v", 1), 1010U);
        EXPECT_EQ(regQueryValueEx(key, "v", nullptr, nullptr, data), 1010U);
        void* child = untouched;
        EXPECT_EQ(open(key, "A", &child), 1010U);
        EXPECT_EQ(child, untouched);
        EXPECT_EQ(RegCloseKey(key), 6U);
        EXPECT_FALSE(CloseHandle(key));
        void* again = nullptr;
        EXPECT_EQ(
            regCreateKeyEx(QString(), root, "", 0, QString(), 0, 0, nullptr, &again, &disposition),
            0U);
        EXPECT_EQ(disposition, 99U);
        EXPECT_EQ(again, key) << "nobody can free it, so there is one";
    }
}

TEST_F(Registry, ADamagedStoreIsABadKey) {
    std::filesystem::create_directories(machineFile().parent_path());
    std::ofstream(machineFile()) << "damaged";
    void* key = untouched;
    QString name;
    EXPECT_EQ(open(HKEY_LOCAL_MACHINE, "A", &key), 1010U);
    EXPECT_EQ(open(HKEY_LOCAL_MACHINE, "", &key), 1010U);
    EXPECT_EQ(regCreateKeyEx(QString(), HKEY_LOCAL_MACHINE, "A", 0, QString(), 0, 0, nullptr, &key,
                             nullptr),
              1010U);
    EXPECT_EQ(key, untouched);
    EXPECT_EQ(regDeleteKey(QString(), HKEY_LOCAL_MACHINE, "A"), 1010U);
    EXPECT_EQ(regEnumKey(QString(), HKEY_LOCAL_MACHINE, 0, name), 1010U);
}

TEST_F(Registry, ErrnoIsLeftAlone) {
    errno = 77;
    void* key = create(HKEY_LOCAL_MACHINE, "A");
    set(key, "v", 1);
    open(HKEY_USERS, "x", &key);
    RegCloseKey(nullptr);
    regDeleteKey(QString(), HKEY_CURRENT_USER, "missing");
    EXPECT_EQ(errno, 77);
}

TEST_F(Registry, OpenKeysAreToldFromOneAnother) {
    void* one = create(HKEY_LOCAL_MACHINE, "A");
    void* other = create(HKEY_LOCAL_MACHINE, "A");
    EXPECT_NE(one, other) << "each open has its own handle";
}

TEST_F(Registry, AKeyMayBeClosedWhileOthersUseIt) {
    for (int round = 0; round < 100; ++round) {
        void* key = nullptr;
        regCreateKeyEx(QString(), HKEY_CURRENT_USER, "A", 0, QString(), 0, 0, nullptr, &key,
                       nullptr);
        if (round == 0)
            set(key, "v", 1);
        std::atomic<bool> closed{false};
        std::thread user([&] {
            QByteArray data;
            QString name;
            while (regQueryValueEx(key, "v", nullptr, nullptr, data) == 0)
                regEnumKey(QString(), key, 0, name);
            EXPECT_TRUE(closed);
        });
        std::this_thread::yield();
        closed = true;
        EXPECT_EQ(RegCloseKey(key), 0U);
        user.join();
    }
}
