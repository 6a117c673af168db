#include "command.h"
#include "output.h"
#include "registryfiles.h"
#include "registrykey.h"
#include "registryshow.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>

namespace Kx {

namespace {

constexpr std::array options{
    Option{"app", "ID", "Use the domain of this application id (of HKLM)"},
    Option{"type", "TYPE",
           "The type of the value to set: sz (the usual one), dword, qword, binary"},
};

using Operands = std::vector<std::string>;

std::optional<std::string> application(const Arguments& arguments) {
    return arguments.argumentOf("app");
}

RegistryKey keyOf(const Arguments& arguments) {
    return RegistryKey(arguments.operands().at(1), application(arguments));
}

QString operand(const Arguments& arguments, std::size_t place) {
    return QString::fromStdString(arguments.operands().at(place));
}

std::string fileOperand(const Arguments& arguments, std::size_t place) {
    return arguments.operands().size() > place ? arguments.operands()[place] : "-";
}

void list(const Arguments& arguments) {
    Operands names{"HKLM", "HKCU"};
    if (arguments.operands().size() > 1)
        names = {arguments.operands()[1]};
    else if (arguments.has("app"))
        names = {"HKLM"};
    for (const std::string& name : names) {
        const RegistryKey key(name, application(arguments));
        const Object found = key.read();
        if (!found)
            throw Failure("there is no key " + name);
        printTree(key.name(), found);
    }
}

void get(const Arguments& arguments) {
    const Object value = keyOf(arguments).value(operand(arguments, 2));
    print(shownValue(value.get()) + '\n');
}

template <class Integer>
QByteArray integerBytes(const QString& text) {
    constexpr int anyBase = 0;
    bool negative = false;
    bool positive = false;
    const auto asSigned = static_cast<Integer>(text.toLongLong(&negative, anyBase));
    const qulonglong asUnsigned = text.toULongLong(&positive, anyBase);
    const bool fits = (negative && asSigned == text.toLongLong(nullptr, anyBase)) ||
                      (positive && asUnsigned >> (8 * sizeof(Integer) - 1) >> 1 == 0);
    if (!fits)
        throw UsageError("no number of that size: " + text.toStdString());
    const auto value = positive ? static_cast<Integer>(asUnsigned) : asSigned;
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

QByteArray hexadecimalBytes(QString text) {
    text.remove(QLatin1Char(' '));
    QByteArray bytes = QByteArray::fromHex(text.toLatin1());
    if (bytes.size() * 2 != text.size())
        throw UsageError("binary values are pairs of hexadecimal digits");
    return bytes;
}

void set(const Arguments& arguments) {
    const std::string type = arguments.argumentOf("type").value_or("sz");
    const QString text = operand(arguments, 3);
    const RegistryKey key = keyOf(arguments);
    const QString name = operand(arguments, 2);
    if (type == "sz")
        key.setValue(name, REG_SZ, {reinterpret_cast<const char*>(text.utf16()), text.size() * 2});
    else if (type == "dword")
        key.setValue(name, REG_DWORD, integerBytes<std::int32_t>(text));
    else if (type == "qword")
        key.setValue(name, REG_QWORD, integerBytes<std::int64_t>(text));
    else if (type == "binary")
        key.setValue(name, REG_BINARY, hexadecimalBytes(text));
    else
        throw UsageError("unknown type " + type);
}

void remove(const Arguments& arguments) {
    if (arguments.operands().size() > 2)
        keyOf(arguments).deleteValue(operand(arguments, 2));
    else
        keyOf(arguments).deleteKey();
}

void exportKey(const Arguments& arguments) {
    exportPropertyList(keyOf(arguments), fileOperand(arguments, 2));
}

void importKey(const Arguments& arguments) {
    importPropertyList(keyOf(arguments), fileOperand(arguments, 2));
}

void exportIni(const Arguments& arguments) {
    exportProfile(application(arguments), arguments.operands().at(1), fileOperand(arguments, 2));
}

void importIni(const Arguments& arguments) {
    const std::string file = arguments.operands().at(1);
    const std::string profile = arguments.operands().size() > 2
                                    ? arguments.operands()[2]
                                    : std::filesystem::path(file).filename().string();
    importProfile(application(arguments), file, profile);
}

/// What the first operand asks for.
struct Action {
    const char* name;
    std::size_t fewest; ///< Operands behind it
    std::size_t most;
    void (*run)(const Arguments&);
};

constexpr std::array actions{
    Action{"list", 0, 1, list},
    Action{"get", 2, 2, get},
    Action{"set", 3, 3, set},
    Action{"delete", 1, 2, remove},
    Action{"export", 1, 2, exportKey},
    Action{"import", 1, 2, importKey},
    Action{"export-ini", 1, 2, exportIni},
    Action{"import-ini", 1, 2, importIni},
};

int run(const Arguments& arguments) {
    if (arguments.operands().empty()) {
        list(arguments);
        return Exit::Success;
    }
    const std::string& name = arguments.operands().front();
    const auto* const action = std::find_if(
        actions.begin(), actions.end(), [&](const Action& known) { return known.name == name; });
    if (action == actions.end())
        throw UsageError("unknown action " + name);
    const std::size_t count = arguments.operands().size() - 1;
    if (count < action->fewest || count > action->most)
        throw UsageError(name + " takes other operands");
    if (arguments.has("type") && name != "set")
        throw UsageError("--type goes with set");
    action->run(arguments);
    return Exit::Success;
}

std::vector<std::string> complete(std::span<const std::string> operands) {
    std::vector<std::string> words;
    if (operands.empty()) {
        for (const Action& action : actions)
            words.emplace_back(action.name);
        return words;
    }
    const std::string& action = operands.front();
    const bool ofProfiles = action == "export-ini";
    if (operands.size() > 1 || action == "import-ini")
        return words;
    for (const char* root : {"HKLM", "HKCU"}) {
        if (!ofProfiles)
            words.emplace_back(root);
        const Object names = RegistryKey(root, std::nullopt).read();
        const auto add = [](const void* key, const void* value, void* context) {
            if (CFGetTypeID(value) == CFDictionaryGetTypeID())
                static_cast<std::vector<std::string>*>(context)->push_back(
                    textOf(key).toStdString());
        };
        std::vector<std::string> keys;
        CFDictionaryApplyFunction(static_cast<CFDictionaryRef>(names.get()), add, &keys);
        for (const std::string& key : keys)
            words.push_back(ofProfiles ? key : std::string(root) + '/' + key);
        if (ofProfiles)
            break;
    }
    return words;
}

} // namespace

extern const Command reg;
constinit const Command reg{
    .name = "reg",
    .operands = "[ACTION [OPERAND...]]",
    .summary = "Show and change the registry and the profiles of INI files",
    .details =
        "  list [KEY]                    a key with all in it as a tree (no key: both roots)\n"
        "  get KEY NAME                  one value\n"
        "  set KEY NAME VALUE            set a value; binary ones are hexadecimal digits\n"
        "  delete KEY [NAME]             delete a value, or the key with all in it\n"
        "  export KEY [FILE]             write a key to a property list\n"
        "  import KEY [FILE]             add what is in a property list to a key\n"
        "  export-ini PROFILE [FILE]     write a profile to an INI file\n"
        "  import-ini FILE [PROFILE]     add what is in an INI file to a profile\n"
        "\n"
        "KEY is HKLM (the machine's) or HKCU (the user's own), with the names on the way to a key\n"
        "between slashes: HKLM/Software/Acme. FILE \"-\" or none is standard input or output.\n"
        "Programs that ask for C:\\any\\where\\app.ini get the profile app.ini.",
    .options = options,
    .run = run,
    .complete = complete,
};

} // namespace Kx
