#include "engine/EngineError.h"

namespace Engine {

EngineError::EngineError(int number, QString description)
    : m_number(number), m_description(std::move(description)), m_what(m_description.toUtf8())
{
}

} // namespace Engine
