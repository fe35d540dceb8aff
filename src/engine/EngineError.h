#pragma once
// The report engine's own failure: an error number and a plain-English description.

#include <QString>
#include <exception>

namespace Engine {

class EngineError : public std::exception
{
public:
    // Numbers follow the automation library's habits: 9 subscript, 13 type, 53 file not found,
    // 500-series for the engine's own faults (see the enum below).
    enum Code {
        SubscriptOutOfRange = 9,
        TypeMismatch = 13,
        FileNotFound = 53,
        BadReportFile = 501,
        BadParameter = 502,
        DatabaseError = 503,
        BadFormula = 504,
        ExportFailed = 505,
        PrintFailed = 507,
        NotLoggedOn = 508,
        Halted = 509 // stopped on request, between records or pages
    };

    EngineError(int number, QString description);

    int number() const { return m_number; }
    QString description() const { return m_description; }
    const char *what() const noexcept override { return m_what.constData(); }

private:
    int m_number;
    QString m_description;
    QByteArray m_what;
};

} // namespace Engine
