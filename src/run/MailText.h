#pragma once
// Mail subjects and messages of a run: the collection name, {$subject.txt} and the report's {?Param} values.

#include <QString>

namespace Engine {
class Report;
}

namespace OutputNames {

// Unchanged while no report is open (`report` null). Otherwise the first %c (either case) becomes
// CurrentCollection() inside a collection, {$subject.txt} goes through ReadTextIfFile, and each
// {?Name} of the report's own parameters becomes its current values joined by ", ".
QString ExpandMailText(const QString &text, const Engine::Report *report, const QString &appPath);

// The first line of appPath + "/Subject.txt" when the whole text is {$subject.txt} in any case and that
// file exists and has a line; every other text unchanged.
QString ReadTextIfFile(const QString &text, const QString &appPath);

} // namespace OutputNames
