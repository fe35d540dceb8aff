#pragma once
// The deadline of the mail client's waits and the interval of their turns.

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

// The longest a turn of a wait sleeps when no event comes (see WaitForNextEvent).
constexpr int kMailTurnMs = 10;
