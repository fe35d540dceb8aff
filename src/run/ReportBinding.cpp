#include "ReportBinding.h"

#include "ConnectionLookup.h"
#include "RunState.h"

#include "calendar/EvaluateDate.h"
#include "connect/clsMap.h"
#include "core/Ansi.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/Numbers.h"
#include "core/QorloError.h"
#include "engine/Codes.h"
#include "engine/ValueFormat.h"
#include "store/clsSchedule.h"

#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace ReportBinding {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

// ---------------------------------------------------------------- parameters

Engine::ParameterFieldDefinition *FieldNamed(Engine::Report &report, const QString &name)
{
    const QString wanted = name.toLower();
    for (Engine::ParameterFieldDefinition &field : report.ParameterFields()) {
        if (field.ParameterFieldName().toLower() == wanted)
            return &field;
    }
    return nullptr;
}

void AddStoredValue(clsSchedule &schedule, Engine::ParameterFieldDefinition &field, const QString &value)
{
    switch (field.ValueType()) {
    case Engine::NumberField:
    case Engine::CurrencyField:
        if (!Numbers::IsNumeric(value)) {
            schedule.ParmError = QStringLiteral("ERROR: Parameter must be numeric");
            return;
        }
        field.AddCurrentValue(Numbers::NumericPrefix(value));
        return;
    case Engine::BooleanField:
        field.AddCurrentValue(value == QLatin1String("Yes") || value == QLatin1String("True"));
        return;
    case Engine::DateField:
    case Engine::DateTimeField: {
        // Unreadable text evaluates to the year 1200 and so adds nothing.
        const double date = DynDates::EvaluateDate(schedule, value);
        if (DayDate::Year(date) > 1500)
            field.AddCurrentValue(DayDate::ToDateTime(date));
        return;
    }
    case Engine::StringField:
        if (!value.contains(QLatin1Char('|'))) {
            field.AddCurrentValue(value);
            return;
        }
        for (const QString &piece : value.split(QLatin1Char('|'), Qt::SkipEmptyParts))
            field.AddCurrentValue(piece);
        return;
    default: return;
    }
}

void ApplyStoredParameters(clsSchedule &schedule, Engine::Report &report, const QString &excludeName)
{
    const QString reportID = schedule.ReportID();
    for (int index = 0; index < schedule.ParmCount(); ++index) {
        schedule.ParmLocate(index);
        if (schedule.ParmReportID() != reportID)
            continue;
        const QString name = schedule.ParmName();
        if (excludeName == QStringLiteral("{?") + name + QLatin1Char('}') ||
            excludeName == QLatin1String("*ALL*"))
            continue;
        if (Engine::ParameterFieldDefinition *field = FieldNamed(report, name))
            AddStoredValue(schedule, *field, schedule.ParmValue());
    }
}

// ---------------------------------------------------------------- log-on

bool IsOneOf(const QString &name, std::initializer_list<QLatin1String> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool IsServerName(const QString &name)
{
    return IsOneOf(name, {QLatin1String("DSN"), QLatin1String("Server"), QLatin1String("PreQEServerName"),
                          QLatin1String("Data Source")});
}

bool IsDatabaseName(const QString &name)
{
    return IsOneOf(name, {QLatin1String("Database"), QLatin1String("PreQEDatabaseName"),
                          QLatin1String("Initial Catalog")});
}

struct Logon
{
    QString server;
    QString database;
    QString user;
};

// What the report file says of the connection. The last property of a name wins.
Logon ReadLogon(Engine::ConnectionProperties &properties)
{
    Logon logon;
    for (Engine::ConnectionProperty &property : properties) {
        const QString name = property.Name();
        if (IsServerName(name))
            logon.server = property.Value().toString();
        else if (IsDatabaseName(name))
            logon.database = property.Value().toString();
        else if (name == QLatin1String("User ID") || name == QLatin1String("UserId"))
            logon.user = property.Value().toString();
        else if (name == QLatin1String("UseDSNProperties"))
            property.setValue(false);
        else if (name == QLatin1String("Connection String")) {
            const QString text = property.Value().toString();
            const QString server = ConnectionStringValue(text, QStringLiteral("Server="));
            const QString database = ConnectionStringValue(text, QStringLiteral("Database="));
            if (!server.isEmpty())
                logon.server = server;
            if (!database.isEmpty())
                logon.database = database;
        }
    }
    return logon;
}

// Writes the log-on into the properties; true when the table has a "Password" property. Each such
// property raises the log-off count, although it queues no server.
bool WriteLogon(RunState &state, Engine::ConnectionProperties &properties, const Logon &logon,
                const QString &password)
{
    bool passwordSeen = false;
    for (Engine::ConnectionProperty &property : properties) {
        const QString name = property.Name();
        if (IsServerName(name))
            property.setValue(logon.server);
        else if (IsDatabaseName(name))
            property.setValue(logon.database);
        else if (name == QLatin1String("User ID")) {
            if (property.Value().toString() != logon.user)
                property.setValue(logon.user);
        } else if (name == QLatin1String("Password")) {
            property.setValue(password);
            ++state.LogOffCount;
            passwordSeen = true;
        }
    }
    return passwordSeen;
}

bool ConnectTable(RunContext &run, Engine::DatabaseTable &table, const QString &reportID)
{
    Engine::ConnectionProperties &properties = table.ConnectionProperties();
    Logon logon = ReadLogon(properties);
    ApplyTableMap(run.tableMap, table, reportID, logon.server, logon.database);
    const QString dll = table.DllName();
    const QString listedUser = FindUser(run.connections, dll, logon.server, logon.database, logon.user);
    if (!listedUser.isEmpty())
        logon.user = listedUser;
    const QString password = FindPassword(run, dll, logon.server, logon.database, logon.user);
    const bool passwordSeen = WriteLogon(run.state, properties, logon, password);
    // Only the first table that found a password gets the property added.
    if (!password.isEmpty() && !passwordSeen && run.state.LogOffCount == 1)
        properties.Add(QStringLiteral("Password"), password);
    return table.TestConnectivity();
}

void WriteConnectionListing(const QString &appPath, Engine::Report &report)
{
    QSaveFile file(CommonFile::JoinPath(appPath, QStringLiteral("Connect.txt")));
    if (!file.open(QIODevice::WriteOnly))
        throw QorloError(QorloError::PathFileAccess);
    file.write(Ansi::Encode(DescribeConnections(report)));
    if (!file.commit())
        throw QorloError(QorloError::PathFileAccess);
}

void ConnectReport(RunContext &run, Engine::Report &report, const QString &reportID)
{
    RunState &state = run.state;
    state.ConnectError.clear();
    if (state.ConnectDiagnostic == QLatin1String("DBPrint"))
        WriteConnectionListing(run.appPath, report);
    for (Engine::DatabaseTable &table : report.Database().Tables()) {
        if (!ConnectTable(run, table, reportID)) {
            state.ConnectError = QStringLiteral("Cannot connect to ") + table.Name();
            return;
        }
    }
    for (Engine::Section &section : report.Sections()) {
        for (Engine::ReportObject &object : section.ReportObjects()) {
            if (object.Kind() != Engine::SubreportObjectKind)
                continue;
            // Only sub-report objects have that kind.
            Engine::Report &subreport = static_cast<Engine::SubreportObject &>(object).OpenSubreport();
            // This forgets the servers the report queued: only the sub-report's are logged off.
            state.LogOffCount = 0;
            ConnectReport(run, subreport, reportID);
            if (!state.ConnectError.isEmpty()) {
                run.warn(QStringLiteral("DB Connection"), state.ConnectError);
                return;
            }
        }
    }
}

// ---------------------------------------------------------------- listing

void DescribeProperty(QString &text, const Engine::ConnectionProperty &property)
{
    text += QStringLiteral("New Property Name=") + property.Name() + kCrLf;
    text += QStringLiteral("Local Name=") + property.LocalName() + kCrLf;
    text += QStringLiteral("Description=") + property.Description() + kCrLf;
    if (property.Name().contains(QLatin1String("Password")))
        text += QStringLiteral("Value is write only") + kCrLf;
    else
        text += QStringLiteral("Value=") + Engine::PlainText(property.Value()) + kCrLf;
    text += QStringLiteral("Children=") + QString::number(property.Children().Count()) + kCrLf;
}

} // namespace

void SetParameters(RunContext &run, const QString &excludeName)
{
    run.state.trap.Guard([&] { ApplyStoredParameters(run.schedule, *run.state.report, excludeName); });
}

void LogOnReport(RunContext &run, Engine::Report &report, const QString &reportID)
{
    run.state.trap.Guard([&] { ConnectReport(run, report, reportID); });
}

void LogOffServers(RunContext &run)
{
    RunState &state = run.state;
    if (state.LogOffCount <= 0)
        return;
    state.trap.Arm();
    for (qint32 index = 1; index <= state.LogOffCount; ++index) {
        // Holes in the list hold empty texts; their log-off fails like any other and is ignored.
        state.trap.Guard([&] {
            if (index > RunState::LogOffUpperBound)
                throw QorloError(QorloError::OutOfRange);
            const LogOffEntry &entry = state.LogOffList[size_t(index)];
            state.report->Application().LogOffServer(entry.dllName, entry.server, entry.database);
        });
    }
    // Disarming also clears what the last failing log-off left.
    state.trap.Disarm();
    state.LogOffCount = 0;
}

void ApplyTableMap(const clsMap &map, Engine::DatabaseTable &table, const QString &reportID, QString &server,
                   QString &database)
{
    QString location = table.Location();
    if (map.ApplyTableMap(location, reportID, server, database))
        table.setLocation(location);
}

QString ReportTitle(const QString &file)
{
    if (file.isEmpty() || !QFileInfo::exists(file))
        return QString();
    Engine::Application application;
    if (!QFileInfo::exists(file))
        return QStringLiteral("(missing file)");
    ErrorTrap trap;
    trap.Arm();
    QString title;
    trap.Guard([&] { title = application.OpenReport(file)->ReportTitle(); });
    return trap.Code() > 0 ? QStringLiteral("Cannot Load Report Title") : title;
}

QString DescribeConnections(Engine::Report &report)
{
    QString text = QStringLiteral("List of DB tables and connection properties") + kCrLf;
    for (const Engine::DatabaseTable &table : report.Database().Tables()) {
        text += QStringLiteral("New Database Table=") + table.Name() + kCrLf;
        for (const Engine::ConnectionProperty &property : table.ConnectionProperties())
            DescribeProperty(text, property);
    }
    return text;
}

} // namespace ReportBinding
