#pragma once
// The main() of every test: its own HOME and settings folder, the offscreen platform, then Qt Test. A
// failed run prints the seed of the test's random generators, so that it can be repeated.

#include <QGuiApplication>
#include <QString>
#include <QTest>
#ifdef QT_WIDGETS_LIB
#include <QApplication>
#endif

namespace TestSupport {

// Points HOME and the XDG folders at a fresh temporary folder, removed at the end of the process.
void UseOwnHome();
// UseOwnHome, and selects the offscreen platform. Called before the application object exists.
void PrepareEnvironment();
// The seed of this run: QORLO_TEST_SEED when set, else a new one. Every random generator of a test
// starts from it.
quint32 RandomSeed();
// Prints the seed when `failures` is not 0; returns `failures`.
int ReportSeed(int failures);
// A file below tests/data.
QString DataFile(const QString &relative);

template <class Application, class Test> int RunTest(int argc, char **argv)
{
    PrepareEnvironment();
    Application app(argc, argv);
    Test test;
    return ReportSeed(QTest::qExec(&test, argc, argv));
}

} // namespace TestSupport

#ifdef QT_WIDGETS_LIB
#define QORLO_TEST_APPLICATION QApplication
#else
#define QORLO_TEST_APPLICATION QGuiApplication
#endif

#define QORLO_TEST_MAIN(TestClass)                                                                           \
    int main(int argc, char **argv)                                                                          \
    {                                                                                                        \
        return TestSupport::RunTest<QORLO_TEST_APPLICATION, TestClass>(argc, argv);                          \
    }
