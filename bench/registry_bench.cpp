// Registry keys, their values and profiles: each call beside what the system charges for the least
// that any implementation must do, and beside QSettings with a file of its own.

#include "ratios.h"

#include <KxQts/KxQts.h>

#include <QCoreApplication>
#include <QHash>
#include <QSettings>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const QString profile = QStringLiteral("bench.ini");
const QString section = QStringLiteral("Main");

/// A world of its own for the run, gone when it ends.
class World {
public:
    World() {
        std::string name = (fs::temp_directory_path() / "kxqts-bench-XXXXXX").string();
        folder = mkdtemp(name.data());
        setenv("HOME", (folder / "home").c_str(), 1);
        setenv("KXQTS_ROOT", (folder / "root").c_str(), 1);
        fs::create_directories(folder / "home");
        fs::create_directories(folder / "root");
    }
    ~World() {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    fs::path folder;
};

const World& world() {
    static const World made;
    return made;
}

QString name(long long number) {
    return QStringLiteral("Value%1").arg(number, 6, 10, QLatin1Char('0'));
}

/// A domain with a key "Key" that has so many values; `user` is its scope.
struct Domain {
    Domain(long long values, bool ofUser) : count(values), user(ofUser) {
        id = QStringLiteral("bench.%1.%2").arg(count).arg(user ? 1 : 0);
        path = user ? world().folder / "home/Library/Preferences"
                    : world().folder / "root/Library/Preferences";
        file = (path / (id + QStringLiteral(".plist")).toStdString()).string();
        if (!fs::exists(file))
            fill();
        const QString keyPath = QStringLiteral("Key");
        prefs = std::make_unique<Korvex::WPrefs>(&id, &keyPath, !user);
    }

    void fill() const {
        CFMutableDictionaryRef key = CFDictionaryCreateMutable(
            nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
        for (long long i = 0; i < count; ++i) {
            CFStringRef text = createCFString(name(i));
            CFStringRef value = createCFString(QStringLiteral("setting %1").arg(i));
            CFDictionarySetValue(key, text, value);
            CFRelease(text);
            CFRelease(value);
        }
        CFStringRef application = createCFString(id);
        CFStringRef top = createCFString(QStringLiteral("Key"));
        const CFStringRef scope = user ? kCFPreferencesCurrentUser : kCFPreferencesAnyUser;
        const CFStringRef host = user ? kCFPreferencesAnyHost : kCFPreferencesCurrentHost;
        CFPreferencesSetValue(top, key, application, scope, host);
        if (!CFPreferencesSynchronize(application, scope, host))
            std::abort();
        CFRelease(top);
        CFRelease(application);
        CFRelease(key);
    }

    long long count;
    bool user;
    QString id;
    fs::path path;
    std::string file;
    std::unique_ptr<Korvex::WPrefs> prefs;
};

void require(bool done, benchmark::State& state) {
    if (!done)
        state.SkipWithError("the call failed");
}

void statAndHash(benchmark::State& state) {
    const Domain domain(100, true);
    QHash<QString, QString> hash;
    for (long long i = 0; i < state.range(0); ++i)
        hash.insert(name(i), name(i));
    long long i = 0;
    for (auto _ : state) {
        struct stat status {};
        benchmark::DoNotOptimize(stat(domain.file.c_str(), &status));
        benchmark::DoNotOptimize(hash.value(name(i++ % state.range(0))));
    }
}
BENCHMARK(statAndHash)->Arg(100)->Arg(100000);

void query(benchmark::State& state) {
    const Domain domain(state.range(0), true);
    QByteArray data;
    long long i = 0;
    for (auto _ : state)
        require(domain.prefs->queryValue(name(i++ % state.range(0)), nullptr, data), state);
}
BENCHMARK(query)->Arg(100)->Arg(100000);

void qsettingsQuery(benchmark::State& state) {
    QSettings settings(QString::fromStdString((world().folder / "query.ini").string()),
                       QSettings::IniFormat);
    for (long long i = 0; i < state.range(0); ++i)
        settings.setValue(name(i), name(i));
    settings.sync();
    long long i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(settings.value(name(i++ % state.range(0))));
}
BENCHMARK(qsettingsQuery)->Arg(100)->Arg(100000);

/// The least that an atomic and acknowledged write can be: lock, write a file of that size beside
/// the old one, put it in its place.
bool leastWrite(const fs::path& folder, const std::vector<char>& contents, bool safe) {
    const int directory = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const int lock = openat(directory, "least.lock", O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    bool done = flock(lock, LOCK_EX) == 0;
    const int file = openat(directory, "least.tmp", O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    done = done &&
           write(file, contents.data(), contents.size()) == static_cast<ssize_t>(contents.size());
    done = done && (!safe || fdatasync(file) == 0);
    done = done && renameat(directory, "least.tmp", directory, "least") == 0;
    done = done && (!safe || fsync(directory) == 0);
    close(file);
    flock(lock, LOCK_UN);
    close(lock);
    close(directory);
    return done;
}

void leastWriteOf(benchmark::State& state, bool user) {
    const Domain domain(state.range(0), user);
    const std::vector<char> contents(fs::file_size(domain.file), 'x');
    const bool safe = !user && geteuid() == 0;
    for (auto _ : state)
        require(leastWrite(domain.path, contents, safe), state);
}

void writeTo(benchmark::State& state, bool user) {
    const Domain domain(state.range(0), user);
    long long i = 0;
    for (auto _ : state) {
        const QByteArray data = QByteArray::number(++i);
        require(domain.prefs->setValue(name(i % state.range(0)), REG_BINARY, data), state);
    }
}

void userWrite(benchmark::State& state) {
    writeTo(state, true);
}
void userFloor(benchmark::State& state) {
    leastWriteOf(state, true);
}
void machineWrite(benchmark::State& state) {
    writeTo(state, false);
}
void machineFloor(benchmark::State& state) {
    leastWriteOf(state, false);
}
BENCHMARK(userFloor)->Arg(100)->Arg(10000)->Arg(100000)->UseRealTime();
BENCHMARK(userWrite)->Arg(100)->Arg(10000)->Arg(100000)->UseRealTime();
BENCHMARK(machineFloor)->Arg(100)->Arg(10000)->Arg(100000)->UseRealTime();
BENCHMARK(machineWrite)->Arg(100)->Arg(10000)->Arg(100000)->UseRealTime();

/// A new value each time, and its removal.
void userAddAndRemove(benchmark::State& state) {
    const Domain domain(state.range(0), true);
    for (auto _ : state) {
        require(domain.prefs->setValue(QStringLiteral("new"), REG_BINARY, "12345"), state);
        require(domain.prefs->deleteValue(QStringLiteral("new")), state);
    }
}
void userFloorTwice(benchmark::State& state) {
    const Domain domain(state.range(0), true);
    const std::vector<char> contents(fs::file_size(domain.file), 'x');
    for (auto _ : state) {
        require(leastWrite(domain.path, contents, false), state);
        require(leastWrite(domain.path, contents, false), state);
    }
}
BENCHMARK(userFloorTwice)->Arg(100)->Arg(100000)->UseRealTime();
BENCHMARK(userAddAndRemove)->Arg(100)->Arg(100000)->UseRealTime();

void qsettingsWrite(benchmark::State& state) {
    QSettings settings(QString::fromStdString((world().folder / "write.ini").string()),
                       QSettings::IniFormat);
    for (long long i = 0; i < state.range(0); ++i)
        settings.setValue(name(i), name(i));
    settings.sync();
    long long i = 0;
    for (auto _ : state) {
        ++i;
        settings.setValue(name(i % state.range(0)), i);
        settings.sync();
    }
}
BENCHMARK(qsettingsWrite)->Arg(100)->Arg(10000)->UseRealTime();

constexpr long long namesListed = 10000;

/// The budget for listing: 4 microseconds a name.
void fourMicrosecondsEach(benchmark::State& state) {
    for (auto _ : state)
        state.SetIterationTime(static_cast<double>(namesListed) * 4e-6);
}
BENCHMARK(fourMicrosecondsEach)->UseManualTime()->Iterations(1);

void enumerate(benchmark::State& state) {
    const Domain domain(namesListed, true);
    QString found;
    for (auto _ : state) {
        unsigned i = 0;
        while (domain.prefs->enumKey(i, found, nullptr))
            ++i;
        require(i == namesListed, state);
    }
}
BENCHMARK(enumerate)->UseRealTime();

void readProfile(benchmark::State& state) {
    WritePrivateProfileStringA("Main", "Key", "some text", "bench.ini");
    char buffer[64];
    for (auto _ : state)
        benchmark::DoNotOptimize(
            GetPrivateProfileStringA("Main", "Key", "", buffer, sizeof buffer, "bench.ini"));
}
BENCHMARK(readProfile);

} // namespace

int main(int argc, char** argv) {
    world();
    return KxBench::run(
        argc, argv,
        {
            {"query/100", "statAndHash/100", 3},
            {"query/100000", "statAndHash/100000", 3},
            {"query/100000", "query/100", 2},
            {"readProfile", "statAndHash/100", 6},
            {"enumerate/real_time", "fourMicrosecondsEach/iterations:1/manual_time", 1},
            {"userWrite/100/real_time", "userFloor/100/real_time", 2},
            {"userWrite/10000/real_time", "userFloor/10000/real_time", 4},
            {"userWrite/100000/real_time", "userFloor/100000/real_time", 4},
            {"userAddAndRemove/100/real_time", "userFloorTwice/100/real_time", 2},
            {"userAddAndRemove/100000/real_time", "userFloorTwice/100000/real_time", 4},
            {"machineWrite/100/real_time", "machineFloor/100/real_time", 2},
            {"machineWrite/10000/real_time", "machineFloor/10000/real_time", 4},
            {"machineWrite/100000/real_time", "machineFloor/100000/real_time", 4},
        });
}
