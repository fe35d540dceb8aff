#include "EventWait.h"

#include "StopRequest.h"

#include <QCoreApplication>
#include <QTimer>

#include <exception>

void WaitForNextEvent(int maxMs)
{
    // The timer's time-out is the event that ends a wait in which nothing else happens.
    QTimer interval;
    interval.setSingleShot(true);
    interval.start(maxMs);
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    // Not while an exception unwinds through a wait in a destructor: a second one would end the process.
    if (std::uncaught_exceptions() == 0)
        StopRequest::Check();
}
