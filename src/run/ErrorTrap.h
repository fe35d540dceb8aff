#pragma once
// The error state of a report run and the trap over it. While the trap is armed, a failing operation
// handed to Guard records its number and description and the run goes on with its next step; while it
// is off, the failure unwinds as a QorloError. Arming and disarming both clear the state.

#include "core/QorloError.h"

#include <QString>
#include <functional>

class ErrorTrap
{
public:
    void Arm();
    void Disarm();
    bool Armed() const { return m_armed; }
    void Clear();
    // True when a failure has been recorded since the last clear.
    bool IsSet() const { return m_code != 0; }
    qint32 Code() const { return m_code; }
    QString Description() const { return m_description; }

    // Runs the operation. Engine errors are translated to the scheduler's error with their number,
    // any other exception as CaughtError() says; a requested stop is never caught.
    void Guard(const std::function<void()> &operation);

private:
    bool m_armed = false;
    qint32 m_code = 0;
    QString m_description;
};

// The exception being handled, called inside a catch block, as the scheduler's error: the engine's
// error with its own number and text, anything else as QorloError::fromCurrentException() gives it.
QorloError CaughtError();
