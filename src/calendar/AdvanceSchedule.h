#pragma once
// Advance: moving every run time past a chosen moment without running anything, and its dialog's logic.

#include <QString>

class clsSchedule;

// Counts the dated items whose NextRun lies before `date`; with `apply`, steps every dated item by
// SaveNextTime(date). The cursor stays on the last item stepped.
void AdvanceSchedule(clsSchedule &schedule, double date, bool apply, int &count);

// The texts of the Advance dialog.
namespace AdvanceTexts {
inline const QString Title = QStringLiteral("Advance Schedule");
inline const QString Analysing = QStringLiteral("Analysing schedule");
inline const QString Processing = QStringLiteral("Processing schedule");
inline const QString Confirm = QStringLiteral("Confirm you wish to update the schedule times");
inline const QString Cancelled = QStringLiteral("Cancelled");
} // namespace AdvanceTexts

// "Analyse Schedule": counts without changing anything and returns the dialog's answer.
QString AnalyseAdvance(clsSchedule &schedule, double moment);
// "Process" after the operator confirmed: advances, saves Qorlo.XML and returns the dialog's answer.
QString ProcessAdvance(clsSchedule &schedule, double moment);
