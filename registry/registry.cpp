#include <KxQts/registry/registry.h>

#include "registry/openkey.h"
#include "registry/predefinedkeys.h"

#include "platform/lock.h"
#include "platform/withoutmemory.h"

#include <map>
#include <memory>
#include <utility>

using Korvex::OpenKey;
using Korvex::WPrefs;

namespace {

unsigned result(bool success) {
    return success ? ERROR_SUCCESS : ERROR_BADKEY;
}

/// The keys that an open with an empty name gives. Nobody can close them, so each is made once.
class RootKeys {
public:
    /// Takes over a root key that was just made. \return The one to hand out.
    void* keep(const QString& appId, bool machine, std::unique_ptr<WPrefs> made) {
        const Korvex::LockGuard guard(lock);
        std::shared_ptr<WPrefs>& kept = keys[{appId, machine}];
        if (!kept)
            kept = std::move(made);
        return kept.get();
    }

private:
    Korvex::Lock lock;
    std::map<std::pair<QString, bool>, std::shared_ptr<WPrefs>> keys KXQTS_GUARDED_BY(lock);
};

RootKeys& rootKeys() {
    static auto* const keys = new RootKeys; // handles stay what they are while threads live
    return *keys;
}

WPrefs* initBelowRoot(const QString& appId, bool machine, const QString& subKey, bool openOnly,
                      unsigned* disposition) {
    return machine ? WPrefs::initKey(appId, subKey, openOnly, disposition)
                   : WPrefs::initKey(nullptr, subKey, false, openOnly, disposition);
}

unsigned openBelowRoot(const QString& appId, bool machine, const QString& subKey, bool openOnly,
                       void** phkResult, unsigned* disposition) {
    WPrefs* key = initBelowRoot(appId, machine, subKey, openOnly, disposition);
    if (!key)
        return ERROR_BADKEY;
    *phkResult = subKey.isEmpty() ? rootKeys().keep(machine ? appId : QString(), machine,
                                                    std::unique_ptr<WPrefs>(key))
                                  : key;
    return ERROR_SUCCESS;
}

unsigned openKey(const QString& appId, void* hKey, const QString& subKey, bool openOnly,
                 void** phkResult, unsigned* disposition) {
    if (!phkResult)
        return ERROR_BAD_ARGUMENTS;
    if (hKey == HKEY_LOCAL_MACHINE || hKey == HKEY_CURRENT_USER)
        return openBelowRoot(appId, hKey == HKEY_LOCAL_MACHINE, subKey, openOnly, phkResult,
                             disposition);
    if (Korvex::isPredefinedKey(hKey))
        return ERROR_BADKEY;
    const OpenKey parent(hKey);
    if (!parent)
        return ERROR_BADKEY;
    // Callers tell success from the handle alone here: the result is an error in any case.
    if (WPrefs* key = WPrefs::initKey(parent.get(), subKey, true, openOnly, disposition))
        *phkResult = key;
    return ERROR_BADKEY;
}

/// Runs an operation on an open key, or on a root key made for the purpose.
template <class Operation>
unsigned withKeyOrRoot(const QString& appId, void* hKey, Operation operation) {
    if (const OpenKey key(hKey); key)
        return result(operation(*key.get()));
    if (hKey != HKEY_LOCAL_MACHINE && hKey != HKEY_CURRENT_USER)
        return ERROR_BADKEY;
    const std::unique_ptr<WPrefs> root(
        initBelowRoot(appId, hKey == HKEY_LOCAL_MACHINE, QString(), true, nullptr));
    return result(root && operation(*root));
}

} // namespace

unsigned regOpenKeyEx(const QString& appId, void* hKey, const QString& subKey, unsigned, unsigned,
                      void** phkResult) {
    return Korvex::keepingErrorNumber(
        ERROR_BADKEY, [&] { return openKey(appId, hKey, subKey, true, phkResult, nullptr); });
}

unsigned regCreateKeyEx(const QString& appId, void* hKey, const QString& subKey, unsigned,
                        const QString&, unsigned, unsigned, _SECURITY_ATTRIBUTES*, void** phkResult,
                        unsigned* disposition) {
    return Korvex::keepingErrorNumber(
        ERROR_BADKEY, [&] { return openKey(appId, hKey, subKey, false, phkResult, disposition); });
}

unsigned regQueryValueEx(void* hKey, const QString& name, unsigned*, unsigned* type,
                         QByteArray& data) {
    return Korvex::keepingErrorNumber(ERROR_BADKEY, [&] {
        const OpenKey key(hKey);
        return result(key && key->queryValue(name, type, data));
    });
}

unsigned regSetValueEx(void* hKey, const QString& name, unsigned, unsigned type,
                       const QByteArray& data) {
    return Korvex::keepingErrorNumber(ERROR_BADKEY, [&] {
        const OpenKey key(hKey);
        return result(key && key->setValue(name, type, data));
    });
}

unsigned regDeleteValue(void* hKey, const QString& name) {
    return Korvex::keepingErrorNumber(ERROR_BADKEY, [&] {
        const OpenKey key(hKey);
        return result(key && key->deleteValue(name));
    });
}

unsigned regDeleteKey(const QString& appId, void* hKey, const QString& subKey) {
    return Korvex::keepingErrorNumber(ERROR_BADKEY, [&] {
        return withKeyOrRoot(appId, hKey, [&](WPrefs& key) { return key.deleteKey(subKey); });
    });
}

unsigned regEnumKey(const QString& appId, void* hKey, unsigned index, QString& name) {
    return Korvex::keepingErrorNumber(ERROR_BADKEY, [&] {
        return withKeyOrRoot(appId, hKey,
                             [&](WPrefs& key) { return key.enumKey(index, name, nullptr); });
    });
}
