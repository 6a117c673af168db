#pragma once

#include "common/objects.h"

#include <KxQts/registry/registry.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

namespace KxTest {

/// Each test begins without any preferences.
class RegistryTest : public testing::Test {
protected:
    RegistryTest() { removeAll(); }
    ~RegistryTest() override { removeAll(); }

    static void removeAll() {
        for (const char* root : {"KXQTS_ROOT", "HOME"})
            std::filesystem::remove_all(std::filesystem::path(std::getenv(root)) / "Library");
    }

    static std::filesystem::path machineFile(const QString& id = "com.korvex.registry") {
        return std::filesystem::path(std::getenv("KXQTS_ROOT")) / "Library/Preferences" /
               (id + ".plist").toStdString();
    }
    static std::filesystem::path userFile() {
        return std::filesystem::path(std::getenv("HOME")) /
               "Library/Preferences/com.korvex.registry.plist";
    }

    /// A top-level value of the machine's usual domain, read around the class.
    static Object stored(const QString& name) {
        const Object key = text(name);
        const Object id = text("com.korvex.registry");
        return Object(CFPreferencesCopyValue(static_cast<CFStringRef>(key.get()),
                                             static_cast<CFStringRef>(id.get()),
                                             kCFPreferencesAnyUser, kCFPreferencesCurrentHost));
    }

    /// An object of the machine's scope.
    static Object get(Korvex::WPrefs& key, const QString& path, unsigned long type = anyType) {
        return Object(key.getObjectOfType(path, type, kCFPreferencesAnyUser));
    }
    static constexpr unsigned long anyType = ~0UL;

    /// An open key of the machine's; closed with its holder.
    struct Key {
        explicit Key(const QString& path, const QString& appId = QString())
            : prefs(Korvex::WPrefs::initKey(appId, path, false, &disposition)) {}
        ~Key() { Korvex::WPrefs::disposeKey(prefs); }
        Key(const Key&) = delete;
        Key& operator=(const Key&) = delete;
        Korvex::WPrefs* operator->() const { return prefs; }

        unsigned disposition = 0;
        Korvex::WPrefs* prefs;
    };

    static QByteArray units(const QString& text) {
        return {reinterpret_cast<const char*>(text.utf16()), text.size() * 2};
    }
    static QByteArray dword(std::int32_t value) {
        return {reinterpret_cast<const char*>(&value), sizeof value};
    }
};

} // namespace KxTest
