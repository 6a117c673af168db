// The Qt-typed paths, with any parts on any volume: the parts of a path are the path again, and
// separators stand where they must.

#include "common/input.h"
#include "common/require.h"
#include "fakes/diskarbiter.h"
#include "fakes/volumetable.h"

#include <KxQts/files/paths.h>

#include <array>
#include <cerrno>

using KxFuzz::Input;
using KxFuzz::require;

namespace {

constexpr int untouched = -77;

struct Parts {
    QString drive, dir, fname, ext;
};

/// A machine with one volume, at a place that the input names.
struct Machine {
    explicit Machine(const std::string& mountPoint) {
        volumes.places[mountPoint] = {0, KxTest::onDevice("disk1s2")};
        KxTest::FakeArbiter::setPath(arbiter.addDisk("disk1s2"), "DAVolumePath", mountPoint);
    }
    KxTest::FakeVolumeTable volumes;
    KxTest::FakeArbiter arbiter;
};

/// Puts a part behind a path, with a separator unless either has it.
QString joined(const QString& path, const QString& part, QChar separator) {
    const bool has = path.endsWith(separator) || part.startsWith(separator);
    return part.isEmpty() ? path : has ? path + part : path + separator + part;
}

QString made(const QString& before, const Parts& parts) {
    QString path = before;
    require(&makePath(path, parts.drive, parts.dir, parts.fname, parts.ext) == &path);
    const QString folder =
        joined(parts.drive.isEmpty() ? before : parts.drive, parts.dir, QLatin1Char('/'));
    require(path ==
            joined(joined(folder, parts.fname, QLatin1Char('/')), parts.ext, QLatin1Char('.')));
    return path;
}

Parts split(const QString& path) {
    Parts parts{QStringLiteral("left"), QStringLiteral("over"), {}, QStringLiteral("text")};
    errno = untouched;
    splitPath(path, parts.drive, parts.dir, parts.fname, parts.ext);
    require(errno == untouched);
    return parts;
}

/// Whether the texts that were cut off stand in the path as they were found.
void requireParts(const Parts& parts, const QString& rest) {
    const auto dot = rest.lastIndexOf(QLatin1Char('.'));
    const QString front = dot < 0 ? rest : rest.left(dot);
    require(parts.ext == (dot < 0 ? QString() : rest.mid(dot + 1)));
    require(!parts.fname.contains(QLatin1Char('/')));
    require(front.contains(QLatin1Char('/')) ? front == parts.dir + QLatin1Char('/') + parts.fname
                                             : parts.dir.isEmpty() && front == parts.fname);
}

void checkRoundTrip(const QString& path, const Parts& parts, const QString& rest) {
    const QLatin1Char slash('/');
    const QString text = parts.dir + slash + parts.fname;
    const bool isPlain = rest.startsWith(slash) && !parts.drive.isEmpty() &&
                         !parts.drive.endsWith(slash) && path.startsWith(parts.drive) &&
                         !parts.dir.endsWith(slash) && !parts.fname.isEmpty() &&
                         !parts.ext.isEmpty() && !text.endsWith(QLatin1Char('.'));
    if (isPlain)
        require(made(QString(), parts) == path);
}

void checkSplit(const QString& path, const std::string& mountPoint) {
    const Machine machine(mountPoint);
    const Parts parts = split(path);
    // Longer mount points cannot be told.
    const QString drive =
        mountPoint.size() < 260 ? QString::fromLatin1(mountPoint.c_str()) : QString();
    require(parts.drive.isEmpty() || parts.drive == drive);
    const QString rest = path.startsWith(parts.drive) ? path.mid(parts.drive.size()) : path;
    requireParts(parts, rest);
    checkRoundTrip(path, parts, rest);
    require(machine.arbiter.liveObjects() == 0);
}

void checkShort(const QString& path, unsigned size) {
    QString unchanged = QStringLiteral("unchanged");
    errno = untouched;
    const unsigned length = getShortPathname(path, unchanged, size);
    require(errno == untouched && unchanged == QLatin1String("unchanged"));
    require(length <= size && length == std::min(getShortPathname(path, unchanged, 65535), size));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const auto length = static_cast<unsigned>(input.below(300));
    const QString path = input.qtText();
    const std::string mountPoint = '/' + input.text();
    const QString before = input.qtText();
    const Parts parts{input.qtText(), input.qtText(), input.qtText(), input.qtText()};
    made(before, parts);
    made(QString(), parts);
    checkSplit(path, mountPoint);
    checkSplit(path, "/");
    checkShort(path, length);
    return 0;
}
