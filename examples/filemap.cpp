// Tells on which volume and in which blocks of its disk each file lies: filemap FILE...

#include <KxQts/KxQts.h>

#include <QTextStream>

#include <vector>

int main(int argc, char** argv) {
    QTextStream out(stdout);
    int failures = 0;
    for (int i = 1; i < argc; ++i) {
        const QString path = QString::fromLatin1(argv[i]); // bytes, as the library takes them
        KX_DEV_VOL_UNION volume{};
        QString root;
        QString name;
        long long size = 0;
        unsigned int count = 0;
        int result = getFileSectorInfo(path, volume, size, count, nullptr);
        std::vector<BLK_CHUNK> runs(count);
        if (result == 0)
            result = getFileSectorInfo(path, volume, size, count, runs.data());
        if (result == 0)
            result = volumePropsFromDvID(volume, root, name);
        out << path << ": ";
        if (result == 0)
            out << size << " bytes on volume \"" << name << "\" at " << root << '\n';
        else
            out << "no map (" << result << ")\n";
        for (unsigned int run = 0; result == 0 && run < count; ++run)
            out << "  " << runs[run].blockCount << " blocks from " << runs[run].startBlock << '\n';
        failures += result != 0;
    }
    return failures;
}
