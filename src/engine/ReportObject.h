#pragma once
// An object placed in a report section (field, text, line, box, sub-report) and the sub-report object (Kind
// 5).

#include "engine/Codes.h"
#include "engine/Collection.h"
#include "engine/ReportDefinition.h"

#include <QString>
#include <memory>

namespace Engine {

class Application;
class Report;

class ReportObject
{
public:
    ReportObject(int kind, QString name) : m_kind(kind), m_name(std::move(name)) {}
    virtual ~ReportObject() = default;

    int Kind() const { return m_kind; }
    QString Name() const { return m_name; }

private:
    int m_kind;
    QString m_name;
};

class SubreportObject : public ReportObject
{
public:
    SubreportObject(const SubreportDefinition &definition, Application *application);
    ~SubreportObject() override;

    // The sub-report, opened on first use and kept, so that log-on settings made on it stay for the run.
    Report &OpenSubreport();
    // What heads the sub-report in every output: its title, or its name when it has none.
    QString Heading();
    const SubreportDefinition &definition() const { return m_definition; }

private:
    SubreportDefinition m_definition;
    Application *m_application;
    std::unique_ptr<Report> m_report;
};

class Section
{
public:
    explicit Section(QString name) : m_name(std::move(name)) {}

    QString Name() const { return m_name; }
    const Collection<ReportObject> &ReportObjects() const { return m_objects; }
    Collection<ReportObject> &ReportObjects() { return m_objects; }

private:
    QString m_name;
    Collection<ReportObject> m_objects;
};

} // namespace Engine
