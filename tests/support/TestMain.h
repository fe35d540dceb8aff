#pragma once
// The main() of every test: its own settings folder, the offscreen platform, then Qt Test.

#include <QGuiApplication>
#include <QString>
#include <QTest>

namespace TestSupport {

// Points XDG_CONFIG_HOME at a fresh temporary folder and selects the offscreen platform.
// Called before the application object exists.
void PrepareEnvironment();
// A file below tests/data.
QString DataFile(const QString &relative);

} // namespace TestSupport

#define QORLO_TEST_MAIN(TestClass)                                                                           \
    int main(int argc, char **argv)                                                                          \
    {                                                                                                        \
        TestSupport::PrepareEnvironment();                                                                   \
        QGuiApplication app(argc, argv);                                                                     \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }
