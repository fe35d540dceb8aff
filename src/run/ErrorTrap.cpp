#include "ErrorTrap.h"

#include "core/OneLine.h"
#include "core/StopRequest.h"
#include "engine/EngineError.h"

void ErrorTrap::Arm()
{
    m_armed = true;
    Clear();
}

void ErrorTrap::Disarm()
{
    m_armed = false;
    Clear();
}

void ErrorTrap::Clear()
{
    m_code = 0;
    m_description.clear();
}

void ErrorTrap::Guard(const std::function<void()> &operation)
{
    try {
        operation();
    } catch (const StopRequested &) {
        throw;
    } catch (...) {
        // The engine stops a long report by an error of its own once a stop is requested.
        if (StopRequest::Requested())
            throw StopRequested();
        const QorloError error = CaughtError();
        if (!m_armed)
            throw error;
        m_code = error.number();
        // Engine and database texts can hold line ends; the run log takes one line.
        m_description = OneLine(error.description());
    }
}

QorloError CaughtError()
{
    try {
        throw;
    } catch (const Engine::EngineError &error) {
        return QorloError(error.number(), error.description());
    } catch (...) {
        return QorloError::fromCurrentException();
    }
}
