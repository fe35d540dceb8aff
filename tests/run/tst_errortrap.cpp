// The run's error trap: the engine's errors and exceptions that are not the program's own become
// run-time errors with their numbers, one-line texts for the run log, and a requested stop passes.
#include "Files.h"
#include "TestMain.h"

#include "core/StopRequest.h"
#include "engine/EngineError.h"
#include "run/ErrorTrap.h"

#include <new>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;
using namespace TestSupport;

class TestErrorTrap : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { StopRequest::Clear(); }
    void foreignExceptions();
    void engineTexts();
    void requestedStop();
};

void TestErrorTrap::foreignExceptions()
{
    ErrorTrap trap;
    trap.Arm();
    trap.Guard([] { throw std::bad_alloc(); });
    QCOMPARE(trap.Code(), 7);
    QCOMPARE(trap.Description(), u"Out of memory"_s);
    trap.Clear();
    trap.Guard([] { throw std::length_error("too long"); });
    QCOMPARE(trap.Code(), 7);
    trap.Clear();
    trap.Guard([] { throw std::runtime_error("odd"); });
    QCOMPARE(trap.Code(), 51);
    QCOMPARE(trap.Description(), u"Internal error"_s);

    // Disarmed, the failure unwinds as the program's own error.
    trap.Disarm();
    QCOMPARE(ErrorOf([&] { trap.Guard([] { throw std::bad_alloc(); }); }), 7);
    QCOMPARE(ErrorOf([&] { trap.Guard([] { throw 42; }); }), 51);
}

void TestErrorTrap::engineTexts()
{
    ErrorTrap trap;
    trap.Arm();
    trap.Guard([] { throw Engine::EngineError(503, u"ERROR: syntax error\nLINE 1: SELEC\r\n^"_s); });
    QCOMPARE(trap.Code(), 503);
    QCOMPARE(trap.Description(), u"ERROR: syntax error LINE 1: SELEC ^"_s);
    trap.Disarm();
    QCOMPARE(ErrorOf([&] { trap.Guard([] { throw Engine::EngineError(501, u"bad"_s); }); }), 501);
}

// Once a stop is requested, whatever the engine raises ends the run as stopped, never as a failure.
void TestErrorTrap::requestedStop()
{
    ErrorTrap trap;
    trap.Arm();
    StopRequest::Request();
    QVERIFY_THROWS_EXCEPTION(StopRequested, trap.Guard([] { StopRequest::Check(); }));
    QVERIFY_THROWS_EXCEPTION(StopRequested, trap.Guard([] { throw Engine::EngineError(509, u"stop"_s); }));
    QVERIFY(!trap.IsSet());
}

QORLO_TEST_MAIN(TestErrorTrap)
#include "tst_errortrap.moc"
