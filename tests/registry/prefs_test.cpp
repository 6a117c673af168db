#include "registry/prefsfixture.h"

#include "fakes/preferences.h"

#include <cerrno>
#include <map>
#include <set>
#include <thread>
#include <tuple>
#include <vector>

using namespace KxTest;
using Korvex::WPrefs;

namespace {

using Prefs = RegistryTest;

const __CFString* const machine = kCFPreferencesAnyUser;

} // namespace

TEST_F(Prefs, AValueLiesInDictionariesNamedByThePathOfItsKey) {
    const Key key("A/B/C");
    ASSERT_TRUE(key->setValue("V", REG_SZ, units("text")));
    const Object v = text("text");
    const Object c = dictionary({{"V", &v}});
    const Object b = dictionary({{"C", &c}});
    EXPECT_TRUE(same(stored("A"), dictionary({{"B", &b}})));
}

TEST_F(Prefs, AValueOfTheRootLiesUnderASlashAndItsName) {
    const std::unique_ptr<WPrefs> root(WPrefs::initKey(QString(), QString(), true, nullptr));
    ASSERT_TRUE(root);
    ASSERT_TRUE(root->setValue("V", REG_DWORD, dword(7)));
    EXPECT_TRUE(same(stored("/V"), number(7)));
    EXPECT_FALSE(stored("V"));
    QByteArray data;
    unsigned type = 0;
    EXPECT_TRUE(root->queryValue("V", &type, data));
    EXPECT_EQ(data, dword(7));
    EXPECT_TRUE(root->deleteValue("V"));
    EXPECT_FALSE(stored("/V"));
}

TEST_F(Prefs, DeletingAKeyOfTheRootAddsNoSlash) {
    const std::unique_ptr<WPrefs> root(WPrefs::initKey(QString(), QString(), true, nullptr));
    ASSERT_TRUE(Key("A")->setValue("V", REG_DWORD, dword(1)));
    EXPECT_FALSE(root->deleteKey("/A"));
    EXPECT_TRUE(root->deleteKey("A"));
    EXPECT_FALSE(stored("A"));
}

TEST_F(Prefs, APathThatBeginsWithASlashIsOneName) {
    WPrefs key(nullptr, nullptr, true);
    ASSERT_TRUE(key.putObject("/A/B", number(1).get(), machine));
    EXPECT_TRUE(same(stored("/A/B"), number(1)));
    EXPECT_TRUE(same(get(key, "/A/B"), number(1)));
    ASSERT_TRUE(key.putObject("A//B/C", number(2).get(), machine));
    const Object two = number(2);
    EXPECT_TRUE(same(stored("A"), dictionary({{"/B/C", &two}})));
    EXPECT_TRUE(same(get(key, "A//B/C"), two));
}

TEST_F(Prefs, ADictionaryInsideAnotherIsNotFoundUnderANameWithASlash) {
    WPrefs key(nullptr, nullptr, true);
    const Object empty = dictionary({});
    ASSERT_TRUE(key.putObject("A//B", empty.get(), machine));
    EXPECT_FALSE(get(key, "A//B"));
    ASSERT_TRUE(key.putObject("/T", empty.get(), machine));
    EXPECT_TRUE(get(key, "/T")) << "but at the top it is";
}

TEST_F(Prefs, ASlashAtTheEnd) {
    WPrefs key(nullptr, nullptr, true);
    ASSERT_TRUE(key.putObject("A/B/", number(1).get(), machine)) << "is dropped in writing";
    const Object one = number(1);
    EXPECT_TRUE(same(stored("A"), dictionary({{"B", &one}})));
    EXPECT_TRUE(same(get(key, "A/B/"), one)) << "and behind a single value";
    EXPECT_TRUE(get(key, "A/")) << "and at the top";
    const Object inner = dictionary({{"C", &one}});
    ASSERT_TRUE(key.putObject("A/D", inner.get(), machine));
    EXPECT_TRUE(get(key, "A/D"));
    EXPECT_FALSE(get(key, "A/D/")) << "but a dictionary inside another is not found";
}

TEST_F(Prefs, ReadingLooksIntoArrays) {
    WPrefs key(nullptr, nullptr, true);
    const Object x = text("found");
    const Object element = dictionary({{"x", &x}});
    const Object nested = array({&x});
    const Object list = array({&element, &x, &nested});
    ASSERT_TRUE(key.putObject("A", list.get(), machine));
    ASSERT_TRUE(key.putObject("B/list", list.get(), machine));
    for (const QString& start : {QString("A"), QString("B/list")}) {
        EXPECT_TRUE(same(get(key, start + "/0/x"), x));
        EXPECT_TRUE(same(get(key, start + "/1"), x));
        EXPECT_TRUE(same(get(key, start + "/2/0"), x));
        EXPECT_TRUE(same(get(key, start + "/0"), element));
        for (const char* index : {"zz", "3", "-1", "99999999999", "0x0"})
            EXPECT_FALSE(get(key, start + "/" + index)) << index;
    }
}

TEST_F(Prefs, TheTypeAskedForDecidesAtTheTopOnly) {
    WPrefs key(nullptr, nullptr, true);
    const Object one = number(1);
    const Object list = array({&one});
    const Object top = dictionary({{"n", &one}, {"d", &list}});
    ASSERT_TRUE(key.putObject("D", top.get(), machine));
    ASSERT_TRUE(key.putObject("L", list.get(), machine));
    ASSERT_TRUE(key.putObject("N", one.get(), machine));
    EXPECT_TRUE(get(key, "D"));
    EXPECT_FALSE(get(key, "D", CFDictionaryGetTypeID())) << "not for its own type";
    EXPECT_FALSE(get(key, "L", CFArrayGetTypeID()));
    EXPECT_TRUE(get(key, "N", CFNumberGetTypeID()));
    EXPECT_FALSE(get(key, "N", CFStringGetTypeID()));
    EXPECT_TRUE(get(key, "D/n", CFStringGetTypeID())) << "not compared further down";
    EXPECT_FALSE(get(key, "D/d", CFArrayGetTypeID()));
    EXPECT_TRUE(get(key, "D/d"));
    EXPECT_TRUE(same(get(key, "D/d/0", CFStringGetTypeID()), one));
}

TEST_F(Prefs, ASingleValueEndsThePath) {
    WPrefs key(nullptr, nullptr, true);
    const Object one = number(1);
    const Object inner = dictionary({{"n", &one}});
    ASSERT_TRUE(key.putObject("N", one.get(), machine));
    ASSERT_TRUE(key.putObject("D", inner.get(), machine));
    EXPECT_TRUE(same(get(key, "N/what/ever"), one));
    EXPECT_FALSE(get(key, "N/what/ever", CFStringGetTypeID()));
    EXPECT_TRUE(same(get(key, "D/n/what/ever"), one));
}

TEST_F(Prefs, WritingBelowASingleValueOrAnArrayReplacesIt) {
    WPrefs key(nullptr, nullptr, true);
    const Object one = number(1);
    const Object list = array({&one});
    const Object both = dictionary({{"n", &one}, {"l", &list}, {"kept", &one}});
    ASSERT_TRUE(key.putObject("N", one.get(), machine));
    ASSERT_TRUE(key.putObject("D", both.get(), machine));
    ASSERT_TRUE(key.putObject("N/x", one.get(), machine));
    EXPECT_TRUE(same(stored("N"), dictionary({{"x", &one}})));
    ASSERT_TRUE(key.putObject("D/n/x", one.get(), machine));
    ASSERT_TRUE(key.putObject("D/l/0/x", one.get(), machine));
    const Object x = dictionary({{"x", &one}});
    const Object zero = dictionary({{"0", &x}});
    EXPECT_TRUE(same(stored("D"), dictionary({{"n", &x}, {"l", &zero}, {"kept", &one}})));
}

TEST_F(Prefs, RemovingMakesTheDictionariesOnTheWay) {
    WPrefs key(nullptr, nullptr, true);
    ASSERT_TRUE(key.putObject("A/B/C", nullptr, machine));
    const Object empty = dictionary({});
    EXPECT_TRUE(same(stored("A"), dictionary({{"B", &empty}})));
    ASSERT_TRUE(key.putObject("A", nullptr, machine));
    EXPECT_FALSE(stored("A"));
}

TEST_F(Prefs, AnEmptyPathIsNothing) {
    WPrefs key(nullptr, nullptr, true);
    EXPECT_FALSE(get(key, ""));
    EXPECT_FALSE(key.putObject("", number(1).get(), machine));
    EXPECT_FALSE(std::filesystem::exists(machineFile()));
}

TEST_F(Prefs, NamesOfEveryKindComeBack) {
    QString odd;
    for (int unit = 1; unit < 0x10000; unit += 13)
        odd += QChar(unit);
    odd.remove('/');
    const Key key("K");
    for (const QString& name :
         {QString(10000, 'n'), odd, QStringLiteral("\U0001F600"), QString(QChar(0))}) {
        ASSERT_TRUE(key->setValue(name, REG_SZ, units(name)));
        QByteArray data;
        unsigned type = 0;
        EXPECT_TRUE(key->queryValue(name, &type, data));
        EXPECT_TRUE(data == units(name));
    }
    QString found;
    EXPECT_TRUE(key->enumKey(0, found, nullptr));
    EXPECT_TRUE(found == QString(10000, 'n'));
    ASSERT_TRUE(key->setValue("with/slash", REG_DWORD, dword(1)));
    EXPECT_TRUE(key->deleteKey("with")) << "a slash in a name makes a sub-key";
}

TEST_F(Prefs, TheEmptyNameStandsForTheKeyItself) {
    for (const QString& path : {QString("K"), QString("K/Sub")}) {
        const Key key(path);
        ASSERT_TRUE(key->setValue("v", REG_DWORD, dword(1)));
        ASSERT_TRUE(key->setValue("", REG_DWORD, dword(2)));
        QByteArray data;
        EXPECT_TRUE(key->queryValue("", nullptr, data));
        EXPECT_EQ(data, dword(2));
        WPrefs reader(nullptr, nullptr, true);
        EXPECT_TRUE(same(get(reader, path), number(2))) << "what was in the key is replaced";
        EXPECT_TRUE(key->deleteValue(""));
        EXPECT_FALSE(get(reader, path));
    }
}

TEST_F(Prefs, ValuesOfEveryLengthComeBack) {
    const Key key("K");
    for (const int length : {0, 1, 14, 15, 16, 255, 256, 65535, 65536, 1000000}) {
        ASSERT_TRUE(key->setValue("s", REG_SZ, units(QString(length, QChar(0x4e2d)))));
        ASSERT_TRUE(key->setValue("b", REG_BINARY, QByteArray(length, 'b')));
        QByteArray data;
        EXPECT_TRUE(key->queryValue("s", nullptr, data));
        EXPECT_TRUE(data == units(QString(length, QChar(0x4e2d)))) << length;
        EXPECT_TRUE(key->queryValue("b", nullptr, data));
        EXPECT_TRUE(data == QByteArray(length, 'b')) << length;
    }
}

TEST_F(Prefs, RegistryTypesAreStoredAsWhatTheyAre) {
    const Key key("K");
    ASSERT_TRUE(key->setValue("sz", REG_SZ, units("abc") + 'x'));
    ASSERT_TRUE(key->setValue("binary", REG_BINARY, QByteArray("\0\1", 2)));
    ASSERT_TRUE(key->setValue("dword", REG_DWORD, dword(-2) + "more"));
    ASSERT_TRUE(key->setValue("qword", REG_QWORD, "12345678"));
    const Object abc = text("abc");
    const Object binary = data(QByteArray("\0\1", 2));
    const Object minusTwo = number(-2);
    const Object eight = data("12345678");
    EXPECT_TRUE(same(
        stored("K"),
        dictionary({{"sz", &abc}, {"binary", &binary}, {"dword", &minusTwo}, {"qword", &eight}})));
}

TEST_F(Prefs, RegistryTypesReadBackWithTheQwordAsBinary) {
    const Key key("K");
    const std::vector<std::tuple<const char*, unsigned, QByteArray, unsigned>> values{
        {"sz", REG_SZ, units("abc"), REG_SZ},
        {"none", REG_SZ, QByteArray(), REG_SZ},
        {"binary", REG_BINARY, QByteArray("\0\1", 2), REG_BINARY},
        {"empty", REG_BINARY, QByteArray(), REG_BINARY},
        {"dword", REG_DWORD, dword(-2), REG_DWORD},
        {"qword", REG_QWORD, "12345678", REG_BINARY}};
    for (const auto& [name, type, data, readType] : values) {
        ASSERT_TRUE(key->setValue(name, type, data));
        unsigned found = 99;
        QByteArray read("old");
        EXPECT_TRUE(key->queryValue(name, &found, read));
        EXPECT_EQ(found, readType) << name;
        EXPECT_EQ(read, data) << name;
        EXPECT_TRUE(key->queryValue(name, nullptr, read)) << "without a place for the type";
    }
}

TEST_F(Prefs, OtherRegistryTypesAndSizesAreRefused) {
    const Key key("K");
    for (const unsigned type : {0U, 2U, 5U, 6U, 7U, 8U, 9U, 10U, 12U, 99U})
        EXPECT_FALSE(key->setValue("v", type, "12345678")) << type;
    EXPECT_FALSE(key->setValue("v", REG_DWORD, "123"));
    EXPECT_FALSE(key->setValue("v", REG_QWORD, "1234567"));
    EXPECT_FALSE(key->setValue("v", REG_QWORD, "123456789"));
    EXPECT_FALSE(stored("K"));
}

TEST_F(Prefs, OtherObjectsAreNoRegistryValues) {
    WPrefs key(nullptr, nullptr, true);
    const Object one = number(1);
    const Object list = array({&one});
    const Object inner = dictionary({{"x", &one}});
    const Object k = boolean(true);
    const Object large = number(0x80000000LL);
    const Object time = date(1);
    const Object all = dictionary(
        {{"b", &k}, {"l", &list}, {"d", &inner}, {"n", &large}, {"t", &time}, {"ok", &one}});
    ASSERT_TRUE(key.putObject("K", all.get(), machine));
    const Key open("K");
    for (const char* name : {"b", "l", "d", "n", "t", "missing"}) {
        QByteArray data("old");
        unsigned type = 99;
        EXPECT_FALSE(open->queryValue(name, &type, data)) << name;
        EXPECT_TRUE(data.isEmpty());
        EXPECT_EQ(type, 99U);
    }
    QByteArray data;
    EXPECT_TRUE(open->queryValue("ok", nullptr, data));
}

TEST_F(Prefs, ProfilesReadTheTypeThatTheyAskFor) {
    WPrefs key(nullptr, nullptr, true);
    const QString string = QStringLiteral("t\u00e9xt\U0001F600");
    int integer = -12;
    bool flag = true;
    const QByteArray bytes("\0\xff", 2);
    ASSERT_TRUE(key.setProfileString("s", machine, &string));
    ASSERT_TRUE(key.setProfileInt("D/i", machine, &integer));
    ASSERT_TRUE(key.setProfileBool("b", machine, &flag));
    ASSERT_TRUE(key.setProfileBinary("D/x", machine, &bytes));
    QString readString;
    int readInteger = 0;
    bool readFlag = false;
    QByteArray readBytes("old");
    EXPECT_TRUE(key.getProfileString("s", machine, readString));
    EXPECT_TRUE(key.getProfileInt("D/i", machine, readInteger));
    EXPECT_TRUE(key.getProfileBool("b", machine, readFlag));
    EXPECT_TRUE(key.getProfileBinary("D/x", machine, readBytes));
    EXPECT_EQ(readString, string);
    EXPECT_EQ(readInteger, -12);
    EXPECT_TRUE(readFlag);
    EXPECT_EQ(readBytes, bytes);
    EXPECT_TRUE(same(stored("b"), boolean(true)));
    EXPECT_FALSE(key.getProfileString("D/i", machine, readString)) << "of another type";
    EXPECT_FALSE(key.getProfileInt("s", machine, readInteger));
    EXPECT_FALSE(key.getProfileInt("D/x", machine, readInteger));
    EXPECT_FALSE(key.getProfileBool("D/i", machine, readFlag));
    EXPECT_FALSE(key.getProfileBinary("D/i", machine, readBytes));
    EXPECT_TRUE(readBytes.isEmpty()) << "emptied first";
    EXPECT_EQ(readString, string);
}

TEST_F(Prefs, ProfileTextsKeepEveryCodeUnit) {
    WPrefs key(nullptr, nullptr, true);
    // Marks of a byte order, a surrogate without its other half, and a zero are characters here.
    for (const int first : {0xFEFF, 0xFFFE, 0xD800, 0}) {
        const QString text = QChar(first) + QStringLiteral("abc");
        ASSERT_TRUE(key.setProfileString("s", machine, &text));
        QString read;
        EXPECT_TRUE(key.getProfileString("s", machine, read));
        EXPECT_TRUE(read == text) << first;
    }
}

TEST_F(Prefs, NullProfileValuesRemove) {
    WPrefs key(nullptr, nullptr, true);
    for (const char* name : {"s", "i", "b", "x"})
        ASSERT_TRUE(key.putObject(name, number(1).get(), machine));
    EXPECT_TRUE(key.setProfileString("s", machine, nullptr));
    EXPECT_TRUE(key.setProfileInt("i", machine, nullptr));
    EXPECT_TRUE(key.setProfileBool("b", machine, nullptr));
    EXPECT_TRUE(key.setProfileBinary("x", machine, nullptr));
    for (const char* name : {"s", "i", "b", "x"})
        EXPECT_FALSE(stored(name));
}

TEST_F(Prefs, ANumberBeyond32BitsIsFalseAndWrittenAllTheSame) {
    WPrefs key(nullptr, nullptr, true);
    ASSERT_TRUE(key.putObject("n", number(0x100000005).get(), machine));
    int value = -1;
    EXPECT_FALSE(key.getProfileInt("n", machine, value));
    EXPECT_EQ(value, 5);
}

TEST_F(Prefs, TheScopeGivenCountsNotTheKeysOwn) {
    WPrefs key(nullptr, nullptr, true);
    int value = 5;
    ASSERT_TRUE(key.setProfileInt("n", kCFPreferencesCurrentUser, &value));
    EXPECT_TRUE(std::filesystem::exists(userFile()));
    EXPECT_FALSE(std::filesystem::exists(machineFile()));
    EXPECT_FALSE(key.getProfileInt("n", machine, value));
    EXPECT_TRUE(key.getProfileInt("n", kCFPreferencesCurrentUser, value));
    for (const __CFString* none : {kCFPreferencesAnyHost, kCFPreferencesCurrentHost,
                                   static_cast<const __CFString*>(nullptr)}) {
        EXPECT_FALSE(key.setProfileInt("n", none, &value));
        EXPECT_FALSE(key.getProfileInt("n", none, value));
        EXPECT_FALSE(key.setSyncProperty("n", nullptr, none));
        EXPECT_EQ(key.getSyncProperty("n", none), nullptr);
    }
}

TEST_F(Prefs, EnumerationListsKeysAndValuesWithTheirKinds) {
    WPrefs writer(nullptr, nullptr, true);
    const Object s = text("x");
    const Object b = boolean(false);
    const Object x = data("x");
    const Object n = number(1);
    const Object a = array({});
    const Object d = dictionary({});
    const Object t = date(1);
    const Object all =
        dictionary({{"s", &s}, {"b", &b}, {"x", &x}, {"n", &n}, {"a", &a}, {"d", &d}, {"t", &t}});
    ASSERT_TRUE(writer.putObject("K", all.get(), machine));
    const Key key("K");
    std::map<QString, int> found;
    QString name;
    int type = 99;
    for (unsigned i = 0; key->enumKey(i, name, &type); ++i)
        found[name] = type;
    const std::map<QString, int> expected{{"s", 1},  {"b", 2},  {"x", 3}, {"n", 4},
                                          {"a", 10}, {"d", 11}, {"t", 0}};
    EXPECT_EQ(found, expected);
    EXPECT_FALSE(key->enumKey(7, name, &type)) << "the index equal to the count";
    EXPECT_EQ(name, "");
    EXPECT_EQ(type, 0);
    EXPECT_TRUE(key->enumKey(0, name, nullptr));
}

TEST_F(Prefs, OnlyDictionariesAreEnumerated) {
    WPrefs root(nullptr, nullptr, true);
    const Object one = number(1);
    const Object list = array({&one});
    ASSERT_TRUE(root.putObject("L", list.get(), machine));
    ASSERT_TRUE(root.putObject("N", one.get(), machine));
    QString name = "old";
    EXPECT_FALSE(root.enumKey(0, name, nullptr)) << "the root of a domain";
    EXPECT_EQ(name, "");
    EXPECT_FALSE(Key("L")->enumKey(0, name, nullptr));
    EXPECT_FALSE(Key("N")->enumKey(0, name, nullptr));
    EXPECT_FALSE(Key("missing")->enumKey(0, name, nullptr));
}

TEST_F(Prefs, OnlyDictionariesAreDeletedAsKeys) {
    const Key key("K");
    ASSERT_TRUE(key->setValue("v", REG_DWORD, dword(1)));
    ASSERT_TRUE(key->setValue("sub/v", REG_DWORD, dword(1)));
    EXPECT_FALSE(key->deleteKey("v"));
    EXPECT_FALSE(key->deleteKey("missing"));
    EXPECT_TRUE(key->deleteKey("sub"));
    EXPECT_FALSE(key->deleteKey("sub"));
    EXPECT_TRUE(key->deleteKey("")) << "a key at the top with nothing behind its slash";
    EXPECT_FALSE(stored("K"));
}

TEST_F(Prefs, OnlySingleValuesAreDeletedAsValues) {
    WPrefs writer(nullptr, nullptr, true);
    const Object s = text("x");
    const Object b = boolean(false);
    const Object x = data("x");
    const Object n = number(1);
    const Object a = array({});
    const Object d = dictionary({});
    const Object t = date(1);
    const Object all =
        dictionary({{"s", &s}, {"b", &b}, {"x", &x}, {"n", &n}, {"a", &a}, {"d", &d}, {"t", &t}});
    ASSERT_TRUE(writer.putObject("K", all.get(), machine));
    const Key key("K");
    for (const char* name : {"s", "b", "x", "n"})
        EXPECT_TRUE(key->deleteValue(name)) << name;
    for (const char* name : {"s", "a", "d", "t", "missing"})
        EXPECT_FALSE(key->deleteValue(name)) << name;
    EXPECT_TRUE(same(stored("K"), dictionary({{"a", &a}, {"d", &d}, {"t", &t}})));
}

TEST_F(Prefs, SyncPropertiesAreTopLevelNamesAsTheyStand) {
    WPrefs key(nullptr, nullptr, true);
    ASSERT_TRUE(key.setSyncProperty("a/b", number(1).get(), machine));
    EXPECT_TRUE(same(stored("a/b"), number(1)));
    EXPECT_TRUE(same(Object(key.getSyncProperty("a/b", machine)), number(1)));
    EXPECT_TRUE(key.setSyncProperty("a/b", nullptr, machine));
    EXPECT_EQ(key.getSyncProperty("a/b", machine), nullptr);
}

TEST_F(Prefs, AWriteThatFailsIsFalse) {
    ScriptedPreferences preferences;
    WPrefs key(nullptr, nullptr, true);
    ASSERT_TRUE(key.putObject("a", number(1).get(), machine));
    preferences.readOnly.insert("com.korvex.registry");
    EXPECT_FALSE(key.putObject("a", number(2).get(), machine));
    EXPECT_FALSE(key.setSyncProperty("a", number(2).get(), machine));
    EXPECT_TRUE(same(get(key, "a"), number(1)));
    preferences.damaged.insert("com.korvex.registry");
    EXPECT_FALSE(get(key, "a"));
    EXPECT_EQ(WPrefs::initKey(QString(), "A", false, nullptr), nullptr);
}

TEST_F(Prefs, AWriteIsOneChange) {
    ScriptedPreferences preferences;
    WPrefs key(nullptr, nullptr, true);
    ASSERT_TRUE(key.putObject("A/B/C", number(1).get(), machine));
    EXPECT_EQ(preferences.changes, 1);
    EXPECT_TRUE(key.deleteKey("A"));
    EXPECT_EQ(preferences.changes, 2) << "looking and removing in one";
    EXPECT_FALSE(key.deleteKey("A"));
    EXPECT_EQ(preferences.changes, 2);
}

TEST_F(Prefs, WritesOfManyThreadsBelowOneNameAreAllThere) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([i] {
            const Key key("Shared/Sub");
            for (int n = 0; n < 20; ++n)
                EXPECT_TRUE(
                    key->setValue(QStringLiteral("%1-%2").arg(i).arg(n), REG_DWORD, dword(n)));
        });
    for (std::thread& thread : threads)
        thread.join();
    const Key key("Shared/Sub");
    QString name;
    EXPECT_TRUE(key->enumKey(79, name, nullptr));
    EXPECT_FALSE(key->enumKey(80, name, nullptr));
}

TEST_F(Prefs, ErrnoIsLeftAlone) {
    errno = 77;
    {
        const Key key("A");
        QByteArray data;
        EXPECT_TRUE(key->setValue("v", REG_DWORD, dword(1)));
        EXPECT_FALSE(key->queryValue("missing", nullptr, data));
        EXPECT_FALSE(key->deleteKey("missing"));
    }
    EXPECT_EQ(errno, 77);
}

TEST_F(Prefs, TheFileOfTheUsualDomainIsTold) {
    QString path = "old";
    EXPECT_FALSE(Korvex::getPreferencesFilePath(true, path)) << "there is no folder yet";
    EXPECT_EQ(path, "");
    std::filesystem::create_directories(machineFile().parent_path());
    EXPECT_TRUE(getPreferencesFilePath(true, path));
    EXPECT_EQ(path.toStdString(), machineFile().string());
    EXPECT_FALSE(std::filesystem::exists(machineFile().parent_path() / "x"));
    std::filesystem::create_directories(userFile().parent_path());
    EXPECT_TRUE(getPreferencesFilePath(false, path));
    EXPECT_EQ(path.toStdString(), userFile().string());
}

TEST_F(Prefs, AFolderWithTooLongAPathHasNoFile) {
    ScriptedPreferences preferences;
    QString path;
    preferences.folderIs = "/" + QString(259, 'x');
    EXPECT_TRUE(getPreferencesFilePath(true, path));
    EXPECT_EQ(path, *preferences.folderIs + "/com.korvex.registry.plist");
    preferences.folderIs = "/" + QString(260, 'x');
    EXPECT_FALSE(getPreferencesFilePath(true, path));
    EXPECT_EQ(path, "");
}
