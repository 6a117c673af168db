#include "registrykey.h"

#include "command.h"

#include <array>
#include <utility>

namespace Kx {

namespace {

constexpr unsigned long anyType = ~0UL;

struct Root {
    const char* name;
    const char* longName;
    bool isMachines;
};

constexpr std::array<Root, 2> roots{
    {{"HKLM", "HKEY_LOCAL_MACHINE", true}, {"HKCU", "HKEY_CURRENT_USER", false}}};

const Root& rootNamed(const QString& name) {
    for (const Root& root : roots) {
        if (name == QLatin1String(root.name) || name == QLatin1String(root.longName))
            return root;
    }
    throw UsageError("a key begins with HKLM or HKCU, not with " + name.toStdString());
}

/// An open key, closed with its holder.
class OpenKey {
public:
    explicit OpenKey(void* opened) : handle(opened) {}
    ~OpenKey() { RegCloseKey(handle); }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    void* const handle;
};

} // namespace

Object owned(CFTypeRef object) {
    return object ? Object(object, CFRelease) : Object();
}

Object stringObject(const QString& text) {
    return owned(createCFString(text));
}

QString textOf(CFTypeRef string) {
    const auto* text = static_cast<CFStringRef>(string);
    return QString(reinterpret_cast<const QChar*>(CFStringGetCharactersPtr(text)),
                   static_cast<qsizetype>(CFStringGetLength(text)));
}

bool isDictionary(const Object& object) {
    return CFGetTypeID(object.get()) == CFDictionaryGetTypeID();
}

RegistryKey::RegistryKey(const std::string& name, const std::optional<std::string>& application)
    : domain(QStringLiteral("com.korvex.registry")) {
    const QString text = QString::fromStdString(name);
    const qsizetype slash = text.indexOf(QLatin1Char('/'));
    isMachines = rootNamed(text.left(slash)).isMachines;
    path = slash < 0 ? QString() : text.mid(slash + 1);
    if (application && !isMachines)
        throw UsageError("HKCU has no other applications; --app goes with HKLM");
    if (application && !application->empty())
        domain = QString::fromStdString(*application);
}

QString RegistryKey::name() const {
    const QString root = QLatin1String(isMachines ? "HKLM" : "HKCU");
    return isRoot() ? root : root + QLatin1Char('/') + path;
}

void* RegistryKey::root() const {
    return isMachines ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

const __CFString* RegistryKey::user() const {
    return isMachines ? kCFPreferencesAnyUser : kCFPreferencesCurrentUser;
}

const __CFString* RegistryKey::host() const {
    return isMachines ? kCFPreferencesCurrentHost : kCFPreferencesAnyHost;
}

Korvex::WPrefs RegistryKey::prefs() const {
    return Korvex::WPrefs(&domain, &path, isMachines);
}

Object RegistryKey::read() const {
    const Object id = stringObject(domain);
    const auto* application = static_cast<CFStringRef>(id.get());
    if (!CFPreferencesSynchronize(application, user(), host()))
        throw Failure("cannot read the domain " + domain.toStdString());
    if (!isRoot())
        return owned(prefs().getObjectOfType(path, anyType, user()));
    // The registry calls do not enumerate a root, so its names come from the storage.
    Object all = owned(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                                 &kCFTypeDictionaryValueCallBacks));
    auto* dictionary = static_cast<CFMutableDictionaryRef>(const_cast<void*>(all.get()));
    const Object names = owned(CFPreferencesCopyKeyList(application, user(), host()));
    const auto* list = static_cast<CFArrayRef>(names.get());
    for (CFIndex i = 0; i < CFArrayGetCount(list); ++i) {
        const void* key = CFArrayGetValueAtIndex(list, i);
        const Object value = owned(
            CFPreferencesCopyValue(static_cast<CFStringRef>(key), application, user(), host()));
        if (value)
            CFDictionarySetValue(dictionary, key, value.get());
    }
    return all;
}

void RegistryKey::write(const Object& dictionary) const {
    bool written = false;
    if (isRoot()) {
        struct Target {
            CFStringRef application, user, host;
        };
        const Object id = stringObject(domain);
        Target target{static_cast<CFStringRef>(id.get()), user(), host()};
        const auto note = [](const void* key, const void* value, void* context) {
            const auto* to = static_cast<const Target*>(context);
            CFPreferencesSetValue(static_cast<CFStringRef>(key), value, to->application, to->user,
                                  to->host);
        };
        CFDictionaryApplyFunction(static_cast<CFDictionaryRef>(dictionary.get()), note, &target);
        written = CFPreferencesSynchronize(target.application, target.user, target.host) != 0;
    } else {
        written = prefs().putObject(path, dictionary.get(), user());
    }
    if (!written)
        throw Failure("cannot write the domain " + domain.toStdString());
}

Object RegistryKey::value(const QString& valueName) const {
    requirePath();
    Object found =
        owned(prefs().getObjectOfType(path + QLatin1Char('/') + valueName, anyType, user()));
    if (!found)
        throw Failure("there is no value " + valueName.toStdString() + " in " +
                      name().toStdString());
    return found;
}

void RegistryKey::requirePath() const {
    if (isRoot())
        throw UsageError("values are in keys, not in " + name().toStdString() + " itself");
}

void RegistryKey::setValue(const QString& valueName, unsigned type, const QByteArray& data) const {
    requirePath();
    void* opened = nullptr;
    regCreateKeyEx(domain, root(), path, 0, QString(), REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                   nullptr, &opened, nullptr);
    const OpenKey key(opened);
    if (regSetValueEx(key.handle, valueName, 0, type, data) != ERROR_SUCCESS)
        throw Failure("cannot set " + valueName.toStdString() + " in " + name().toStdString());
}

void RegistryKey::deleteValue(const QString& valueName) const {
    requirePath();
    void* opened = nullptr;
    regOpenKeyEx(domain, root(), path, 0, KEY_ALL_ACCESS, &opened);
    const OpenKey key(opened);
    if (regDeleteValue(key.handle, valueName) != ERROR_SUCCESS)
        throw Failure("cannot delete " + valueName.toStdString() + " in " + name().toStdString());
}

void RegistryKey::deleteKey() const {
    if (isRoot())
        throw UsageError("a root cannot be deleted");
    if (regDeleteKey(domain, root(), path) != ERROR_SUCCESS)
        throw Failure("cannot delete the key " + name().toStdString());
}

} // namespace Kx
