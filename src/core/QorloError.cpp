#include "QorloError.h"

#include <new>
#include <stdexcept>

QorloError::QorloError(int number, const QString &description)
    : m_number(number), m_description(description), m_what(runTimeText().toUtf8())
{
}

QorloError::QorloError(Number number) : QorloError(number, standardDescription(number)) {}

QString QorloError::runTimeText() const
{
    return QStringLiteral("Run-time error '%1': %2").arg(m_number).arg(m_description);
}

QString QorloError::standardDescription(int number)
{
    switch (number) {
    case InvalidCall: return QStringLiteral("Invalid procedure call or argument");
    case Overflow: return QStringLiteral("Overflow");
    case OutOfMemory: return QStringLiteral("Out of memory");
    case OutOfRange: return QStringLiteral("Subscript out of range");
    case TypeMismatch: return QStringLiteral("Type mismatch");
    case FileNotFound: return QStringLiteral("File not found");
    case PermissionDenied: return QStringLiteral("Permission denied");
    case InternalError: return QStringLiteral("Internal error");
    case PathFileAccess: return QStringLiteral("Path/File access error");
    case PathNotFound: return QStringLiteral("Path not found");
    default: return QStringLiteral("Application-defined or object-defined error");
    }
}

QorloError QorloError::fromCurrentException()
{
    try {
        throw;
    } catch (const QorloError &error) {
        return error;
    } catch (const std::bad_alloc &) {
        return QorloError(OutOfMemory);
    } catch (const std::length_error &) {
        // A container asked for more than it can hold.
        return QorloError(OutOfMemory);
    } catch (...) {
        return QorloError(InternalError);
    }
}
