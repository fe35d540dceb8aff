#pragma once
// The deadline of the mail client's polling waits and the one turn of its loop.

#include <QElapsedTimer>
#include <QtGlobal>

// Ends when its seconds have passed, measured by a monotonic timer. The end is also compared as a time of
// day taken from the Clock and not wrapped: a wait whose end would lie past midnight ends at once.
class MailDeadline
{
public:
    explicit MailDeadline(qint32 seconds);
    bool Passed() const;

private:
    float m_start;
    float m_end;
    QElapsedTimer m_timer;
};

// One turn of a wait: deliver pending events, then sleep 10 ms.
void PumpAndSleep();
