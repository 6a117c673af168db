// Asks the root daemon to run a command line, or for a value of the machine-wide registry:
//
//   askdaemon TOOL [ARGUMENT...]
//   askdaemon --set KEY NAME TEXT
//   askdaemon --get KEY NAME
//
// A program in Qt's types, without an event loop.

#include <KxQts/KxQts.h>
#include <KxQts/daemon/registryclient.h>

#include <QTextStream>

namespace {

constexpr unsigned patience = 30; // seconds
constexpr unsigned textType = 1;  // a registry string: UTF-16

QTextStream& out() {
    static QTextStream stream(stdout);
    return stream;
}

int report(int result, const QString& message) {
    out() << "result " << result << (message.isEmpty() ? "" : ", ") << message << '\n';
    return result == 0 ? 0 : 1;
}

int setValue(const QString& key, const QString& name, const QString& text) {
    const QByteArray data(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    return report(Korvex::DaemonRegistry::setValue(key, name, textType, data), QString());
}

int getValue(const QString& key, const QString& name) {
    unsigned type = 0;
    QByteArray data;
    const int result = Korvex::DaemonRegistry::readValue(key, name, type, data);
    if (result == 0 && type == textType)
        out() << QString(reinterpret_cast<const QChar*>(data.constData()), data.size() / 2) << '\n';
    return report(result, QString());
}

int runTool(const QString& tool, const QStringList& arguments) {
    QString message;
    const int result = executeCommandLineTool(tool, arguments, message, patience);
    return report(result, message);
}

} // namespace

int main(int argc, char** argv) {
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    if (words.size() == 4 && words[0] == QLatin1String("--set"))
        return setValue(words[1], words[2], words[3]);
    if (words.size() == 3 && words[0] == QLatin1String("--get"))
        return getValue(words[1], words[2]);
    if (words.isEmpty()) {
        out() << "usage: askdaemon TOOL [ARGUMENT...] | --set KEY NAME TEXT | --get KEY NAME\n";
        return 2;
    }
    return runTool(words.takeFirst(), words);
}
