// No test of a program with this source may make Qt complain.

#include <QString>
#include <QtGlobal>

#include <gtest/gtest.h>

namespace {

/// The library's clients have neither an event loop nor a `QCoreApplication`; Qt must not complain
/// about that on their standard error.
class NoWarnings : public testing::Environment {
    static void fail(QtMsgType, const QMessageLogContext&, const QString& text) {
        ADD_FAILURE() << text.toStdString();
    }

    void SetUp() override { qInstallMessageHandler(fail); }
};

const auto* const registered = testing::AddGlobalTestEnvironment(new NoWarnings);

} // namespace
