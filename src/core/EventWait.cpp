#include "EventWait.h"

#include "StopRequest.h"

#include <QCoreApplication>
#include <QTimer>

void WaitForNextEvent(int maxMs)
{
    // The timer's time-out is the event that ends a wait in which nothing else happens.
    QTimer interval;
    interval.setSingleShot(true);
    interval.start(maxMs);
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    StopRequest::Check();
}
