#include <KxQts/support/log.h>

#include <new>

namespace Korvex {

namespace {

QString textOf(const QString* text) {
    return text ? *text : QString();
}

bool isFileOpen() {
    constexpr int standardOutput = 1;
    return __kx_glog.fd > standardOutput;
}

} // namespace

int IOLogOpen(const char* path, unsigned int flags, const char* title, const char* module) try {
    return __kx_glog.openLog(QString::fromLatin1(path), QString::fromLatin1(title),
                             QString::fromLatin1(module), flags);
} catch (const std::bad_alloc&) {
    return 1; // opening a log never fails; this one stays as it was
}

int IOLogOpen(const QString& path, unsigned int flags, QString* title, QString* module) {
    return __kx_glog.openLog(path, textOf(title), textOf(module), flags);
}

bool IOLogOpenUseCurrent(const char* path, unsigned int flags, const char* title,
                         const char* module) {
    if (isFileOpen())
        return false;
    IOLogOpen(path, flags, title, module);
    return true;
}

bool IOLogOpenUseCurrent(const QString& path, unsigned int flags, QString* title, QString* module) {
    if (isFileOpen())
        return false;
    IOLogOpen(path, flags, title, module);
    return true;
}

void IOLogSetTitle(const QString& title, QString* oldTitle) {
    __kx_glog.setTitle(title, oldTitle);
}

int IOLogClose() {
    return __kx_glog.closeLog();
}

} // namespace Korvex
