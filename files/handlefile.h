#pragma once

#include <KxQts/handles/storage.h>

#include <QFile>

namespace Korvex {

/// The file object behind a handle that the library made itself.
///
/// It fetches as much as is asked for, and not a whole buffer, when the position was moved just
/// before: programs that jump about in a file read little at each place, and filling the buffer
/// there would cost them several times the read. What follows in sequence is buffered as by any
/// file object.
class HandleFile final : public QFile, public HandleStorage {
public:
    using QFile::QFile;

    bool seek(qint64 position) override {
        moved = true;
        return QFile::seek(position);
    }

    /// As `read`, whose buffering it directs.
    qint64 readHere(char* buffer, qint64 count) {
        wanted = count;
        return read(buffer, count);
    }

protected:
    qint64 readData(char* buffer, qint64 room) override {
        const qint64 fetched = moved ? qMin(room, qMax(wanted, leastFetch)) : room;
        moved = false;
        return QFile::readData(buffer, fetched);
    }

private:
    static constexpr qint64 leastFetch = 4096;

    qint64 wanted = 0;
    bool moved = false;
};

} // namespace Korvex
