#pragma once
// The parameters a report file declares, as the report engine reads them.

#include <QList>
#include <QString>
#include <QStringList>

struct ReportParameter
{
    // The plain name, without braces.
    QString name;
    int valueType = 0;
    QString prompt;
    bool multiple = false;
    QStringList defaults;

    // "{?Name}", as multi-run files name the parameter.
    QString bracedName() const { return QStringLiteral("{?") + name + QLatin1Char('}'); }
};

// Opens the report with the engine and lists its parameters in their order. A file that the engine
// cannot read raises its error as a QorloError.
QList<ReportParameter> ReadReportParameters(const QString &file);
