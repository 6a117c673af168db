// Reads a text and logs what is in it: textlog TEXT LOG
//
// A program in C++ that uses the library in Qt's types: strings for calls of the C library, wide
// formats, wiping of secrets, and the log, which several threads write to at once.

#include <KxQts/KxQts.h>

#include <QStringList>
#include <QTextStream>

#include <cstdio>
#include <thread>
#include <vector>

namespace {

QStringList linesOf(const QString& path) {
    QStringList lines;
    // The C library wants 8-bit text; the copy is wiped when the call is over.
    FILE* file = std::fopen(WCString(path), "r");
    if (!file)
        return lines;
    QTextStream stream(file);
    while (!stream.atEnd())
        lines << stream.readLine();
    std::fclose(file);
    return lines;
}

QString longestWordOf(const QStringList& lines) {
    QString longest;
    for (const QString& line : lines) {
        for (const QString& word : line.split(' ', Qt::SkipEmptyParts)) {
            if (word.size() > longest.size())
                longest = word;
        }
    }
    return longest;
}

// Formats written for Windows take wide arguments for %s.
QString summary(const QString& path, const QStringList& lines) {
    QString text;
    formatWithWCharQString(text, QStringLiteral("%s has %d lines; the longest word is %s"),
                           static_cast<const wchar_t*>(WWString(path)),
                           static_cast<int>(lines.size()),
                           static_cast<const wchar_t*>(WWString(longestWordOf(lines))));
    return text;
}

// Several threads log their share of the lines. Every line comes out whole.
void logFromThreads(const QStringList& lines) {
    constexpr int threadCount = 4;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&lines, thread] {
            for (qsizetype i = thread; i < lines.size(); i += threadCount)
                Korvex::IOLog("line %lld, %s", static_cast<long long>(i + 1),
                              static_cast<const char*>(WCString(lines[i])));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

// Shows the memory of a secret before and after it is wiped.
void wipeSecret() {
    QString secret = QStringLiteral("correct horse");
    secret.detach(); // a literal lies in memory that nobody may write
    const QChar* memory = secret.constData();
    const qsizetype length = secret.size();
    std::printf("A secret of %lld characters begins with '%c'", static_cast<long long>(length),
                memory[0].toLatin1());
    KXQStringDeepClean(secret);
    qsizetype zeros = 0;
    while (zeros < length && memory[zeros].isNull())
        ++zeros;
    std::printf("; cleaned, the same memory holds %lld zeros", static_cast<long long>(zeros));
    KXQStringDeepCleanAndRelease(secret);
    std::printf("; released, the string is %s.\n", secret.isNull() ? "null" : "still there");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: textlog TEXT LOG\n");
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    const QStringList lines = linesOf(path);
    if (lines.isEmpty()) {
        std::fprintf(stderr, "textlog: cannot read %s, or it is empty\n", argv[1]);
        return 1;
    }

    constexpr unsigned int append = 4;
    Korvex::IOLogOpen(argv[2], append, "textlog", argv[0]);
    const QString text = summary(path, lines);
    Korvex::IOLog("%s", static_cast<const char*>(WCString(text)));
    std::printf("%s.\n", qPrintable(text));
    logFromThreads(lines);
    const bool good = Korvex::IOLogClose() == 0;

    wipeSecret();
    return good ? 0 : 1;
}
