#include "core/EventWait.h"
#include "TestMain.h"

#include <QElapsedTimer>

class TestEventWait : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void queuedCallsAndIdleWaits();
};

void TestEventWait::queuedCallsAndIdleWaits()
{
    // A call queued before the wait runs inside it, as the tick queued by the timer must.
    bool ran = false;
    QMetaObject::invokeMethod(
        this, [&ran] { ran = true; }, Qt::QueuedConnection);
    WaitForNextEvent(60000);
    QVERIFY(ran);

    // With nothing to deliver, the interval ends the wait: a hundred turns of 10 ms come back.
    QElapsedTimer watch;
    watch.start();
    for (int turn = 0; turn < 100; ++turn)
        WaitForNextEvent(10);
    QVERIFY2(watch.elapsed() < 60000, "an idle wait did not end at its interval");
}

QORLO_TEST_MAIN(TestEventWait)
#include "tst_eventwait.moc"
