#include "ErrorTrap.h"

#include "core/QorloError.h"
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
        try {
            operation();
        } catch (const Engine::EngineError &error) {
            throw QorloError(error.number(), error.description());
        }
    } catch (const QorloError &error) {
        if (!m_armed)
            throw;
        m_code = error.number();
        m_description = error.description();
    }
}
