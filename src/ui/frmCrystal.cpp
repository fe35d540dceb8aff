#include "frmCrystal.h"

#include "ReportViewer.h"
#include "frmAlert10.h"
#include "frmParameterValues.h"

#include "calendar/EvaluateDate.h"
#include "core/CommonFile.h"
#include "core/DayDate.h"
#include "core/Numbers.h"
#include "core/QorloError.h"
#include "core/TWReg.h"
#include "engine/Codes.h"
#include "run/ReportBinding.h"
#include "scheduler/Prompter.h"
#include "scheduler/QorloGlobals.h"
#include "store/clsSchedule.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>

namespace {

const QString ViewerSection = QStringLiteral("Viewer");
constexpr int TwipsPerPixel = 15;
constexpr int MaximisedState = 2;
constexpr int MinimisedState = 1;
// Departure from an endless wait: the viewer's wait polls and ends after 10 minutes.
constexpr int WaitTurnMs = 100;
constexpr qint64 WaitLimitMs = 10 * 60 * 1000;

bool Ended(int progress)
{
    return progress == Engine::ProgressHalted || progress == Engine::ProgressCompleted ||
           progress == Engine::ProgressFailed;
}

} // namespace

frmCrystal::frmCrystal(QorloGlobals &globals, QWidget *parent)
    : QWidget(parent, Qt::Window), m_globals(globals), m_viewer(new ReportViewer(this))
{
    setObjectName(QStringLiteral("frmCrystal"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_viewer);
    connect(m_viewer, &ReportViewer::Failed, this, [this](const QString &description) {
        m_globals.prompter.ShowMessage(QStringLiteral("Report Viewer"),
                                       QStringLiteral("Error: ") + description);
    });
    connect(m_viewer, &ReportViewer::Finished, this, [this] {
        if (m_closeAfterLoad)
            close();
    });
    RestoreGeometry();
}

frmCrystal::~frmCrystal()
{
    m_viewer->setReportSource(nullptr);
    // The report goes before the application that opened it.
    m_run.report.reset();
}

frmCrystal *frmCrystal::ViewFile(QorloGlobals &globals, const QString &file, const QString &request)
{
    if (request != QLatin1String("View"))
        globals.Context().state.LogOffCount = 0;
    if (file.isEmpty() || !QFileInfo::exists(file) || request != QLatin1String("View"))
        return nullptr;
    auto *window = new frmCrystal(globals);
    window->show();
    window->LoadTCReport(file, false);
    window->ViewReport();
    return window;
}

frmCrystal *frmCrystal::PreviewItem(QorloGlobals &globals, const QString &reportID, const QString &file,
                                    QWidget *opener)
{
    if (file.isEmpty() || !QFileInfo::exists(file)) {
        globals.prompter.ShowMessage(QStringLiteral("Preview"), QStringLiteral("Report not found: ") + file);
        return nullptr;
    }
    auto *window = new frmCrystal(globals, opener);
    window->show();
    window->Load(file, reportID);
    window->ViewReport();
    return window;
}

RunContext frmCrystal::Run()
{
    RunContext run = m_globals.Context();
    return RunContext{run.schedule, run.log,     run.connections, run.tableMap,
                      m_run,        run.appPath, run.saveWeb,     run.warn};
}

void frmCrystal::LoadTCReport(const QString &file, bool)
{
    Load(file, QString());
}

void frmCrystal::Load(const QString &file, const QString &reportID)
{
    m_run.trap.Arm();
    m_run.report.reset();
    m_run.application = std::make_unique<Engine::Application>();
    m_run.trap.Guard([&] { m_run.report = m_run.application->OpenReport(file); });
    m_file = file;
    if (m_run.report)
        m_openingSelection = m_run.report->GroupSelectionFormula();
    if (m_run.trap.IsSet()) {
        m_globals.prompter.ShowMessage(QStringLiteral("Report Viewer"),
                                       QStringLiteral("Error: ") + m_run.trap.Description());
        m_run.trap.Clear();
        // Taken after the clear, so it is empty and the view goes on regardless.
        m_errorText = m_run.trap.Description();
        return;
    }
    setWindowTitle(ReportCaption());
    RunContext run = Run();
    ReportBinding::LogOnReport(run, *m_run.report, reportID);
    if (!m_run.ConnectError.isEmpty()) {
        m_globals.prompter.ShowMessage(QStringLiteral("DB Connection"), m_run.ConnectError,
                                       Prompter::Icon::Warning);
        m_errorText = m_run.ConnectError;
        return;
    }
    QCoreApplication::processEvents();
    ApplyDate();
    if (!reportID.isEmpty()) {
        // The cursor goes back where it was: a run under way reads its item through it.
        const int position = m_globals.Schedule.Position();
        m_globals.Schedule.Find(reportID);
        ReportBinding::SetParameters(run, QString());
        m_globals.Schedule.SetPosition(position);
    }
    if (m_run.trap.IsSet()) {
        m_errorText = m_run.trap.Description();
        return;
    }
    m_viewer->setReportSource(m_run.report.get());
}

// Parameters that hold no value yet are asked for; false when the operator cancels.
bool frmCrystal::AskParameters()
{
    frmParameterValues dialog(*m_run.report, this);
    if (dialog.IsEmpty())
        return true;
    m_run.report->SetDialogParentWindow(quintptr(winId()));
    return dialog.exec() == QDialog::Accepted;
}

void frmCrystal::ViewReport()
{
    if (!m_errorText.isEmpty())
        return;
    if (m_run.report && !AskParameters()) {
        m_errorText = QStringLiteral("No parameter values");
        return;
    }
    // The window can be closed, and so deleted, while the wait turns the event loop.
    const QPointer<frmCrystal> self(this);
    m_viewer->ViewReport();
    WaitForFinish();
    if (self && m_run.report && m_run.report->ReportAlerts().Count() > 0)
        CheckAlerts();
}

QString frmCrystal::ReportCaption() const
{
    const QString title = m_run.report ? m_run.report->ReportTitle() : QString();
    return title.isEmpty() ? CommonFile::FileNameOnly(m_file) : title;
}

void frmCrystal::WaitForFinish()
{
    if (!m_run.report)
        return;
    const QPointer<frmCrystal> self(this);
    const QDeadlineTimer limit(WaitLimitMs);
    while (self && !Ended(m_run.report->PrintingStatus().Progress()) && !limit.hasExpired()) {
        QEventLoop turn;
        QTimer::singleShot(WaitTurnMs, &turn, [] {});
        turn.processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void frmCrystal::CheckAlerts()
{
    for (const Engine::ReportAlert &alert : m_run.report->ReportAlerts()) {
        if (alert.AlertingRecords().Count() < 1)
            continue;
        if (!m_alertWindow) {
            // Owned by the viewer: usable beside a modal item editor, and gone with the viewer.
            m_alertWindow = new frmAlert10(ReportCaption(), this);
            m_alertWindow->show();
            m_alertKey = ReportCaption();
        }
        m_alertWindow->AddAlert(alert.Name(), alert.ConditionFormula());
    }
}

void frmCrystal::SetAlertSelection(const QString &name, const QString &formula)
{
    // A narrowing asked for while the pages are laid out would change the records under the layout.
    if (!m_run.report || m_viewer->Busy())
        return;
    setWindowTitle(ReportCaption() + QStringLiteral(" (Alert= ") + name + QLatin1Char(')'));
    m_run.trap.Arm();
    m_run.trap.Guard([&] {
        if (name.isEmpty()) {
            m_run.report->setGroupSelectionFormula(m_openingSelection);
            setWindowTitle(ReportCaption());
        } else {
            m_run.report->setGroupSelectionFormula(
                m_openingSelection.isEmpty() ? formula
                                             : m_openingSelection + QStringLiteral(" and ") + formula);
        }
    });
    if (m_run.trap.IsSet()) {
        m_run.trap.Clear();
        m_globals.prompter.ShowMessage(
            QStringLiteral("Database Connections"),
            QStringLiteral("Error displaying alert\r\nInvalid Group Selection Formula"));
        return;
    }
    m_viewer->Redraw();
    WaitForFinish();
}

void frmCrystal::LoadTCParm(const QString &tag, const QString &value)
{
    if (!m_run.report)
        return;
    for (Engine::ParameterFieldDefinition &parameter : m_run.report->ParameterFields()) {
        if (parameter.Name().compare(tag, Qt::CaseInsensitive) != 0)
            continue;
        parameter.ClearCurrentValueAndRange();
        m_run.trap.Arm();
        m_run.trap.Guard([&] { AddTypedValue(parameter, value); });
    }
}

void frmCrystal::AddTypedValue(Engine::ParameterFieldDefinition &parameter, const QString &value)
{
    switch (parameter.ValueType()) {
    case Engine::NumberField:
    case Engine::CurrencyField:
        if (!Numbers::IsNumeric(value))
            return m_globals.prompter.ShowMessage(
                QStringLiteral("Error"), QStringLiteral("ERROR: '") + parameter.ParameterFieldName() +
                                             QStringLiteral("' parameter must be numeric"));
        return parameter.AddCurrentValue(Numbers::NumericPrefix(value));
    case Engine::BooleanField:
        return parameter.AddCurrentValue(value.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 ||
                                         value.compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0);
    case Engine::DateField:
    case Engine::DateTimeField: return parameter.AddCurrentValue(DayDate::ToDateTime(StringToDate(value)));
    default: return parameter.AddCurrentValue(value);
    }
}

void frmCrystal::SetDate(double date)
{
    m_dateFlag = true;
    m_date = date;
    ApplyDate();
}

void frmCrystal::ApplyDate()
{
    if (m_dateFlag && m_run.report)
        m_run.report->setPrintDate(DayDate::ToDate(m_date));
}

void frmCrystal::SetSize(int left, int top, int width, int height)
{
    move(left / TwipsPerPixel, top / TwipsPerPixel);
    if (width != 0 && height != 0)
        resize(width / TwipsPerPixel, height / TwipsPerPixel);
}

bool frmCrystal::ShowGroupTree() const
{
    return m_viewer->GroupTreeShown();
}

void frmCrystal::SetGroupTree(bool shown)
{
    m_viewer->SetGroupTreeShown(shown);
}

void frmCrystal::RefreshData()
{
    m_viewer->Refresh();
}

void frmCrystal::FadeIn()
{
    for (int opacity = 2; opacity <= 254; ++opacity) {
        SetFade(opacity);
        QCoreApplication::processEvents();
        QThread::msleep(10);
    }
}

void frmCrystal::SetFade(int opacity)
{
    setWindowOpacity(qBound(0, opacity, 255) / 255.0);
}

double frmCrystal::StringToDate(const QString &text)
{
    return DynDates::EvaluateDate(m_globals.Schedule, text);
}

void frmCrystal::Delete()
{
    close();
}

void frmCrystal::closeEvent(QCloseEvent *event)
{
    // The engine is deep in its work below this call: it stops first, then the window closes.
    if (m_viewer->Busy()) {
        m_closeAfterLoad = true;
        m_viewer->Cancel();
        event->ignore();
        return;
    }
    StoreGeometry();
    if (m_alertWindow)
        m_alertWindow->close();
    if (m_run.report) {
        RunContext run = Run();
        ReportBinding::LogOffServers(run);
    }
    event->accept();
    if (m_endOnClose)
        QCoreApplication::exit(0);
}

void frmCrystal::RestoreGeometry()
{
    const auto read = [](const char *key, int fallback) {
        return TWReg::ReadSettingNumber(ViewerSection, QLatin1String(key), fallback);
    };
    SetSize(read("Left", 840), read("Top", 840), read("Width", 9210), read("Height", 4545));
    const int state = read("WindowState", MaximisedState);
    if (state == MaximisedState)
        setWindowState(Qt::WindowMaximized);
    else if (state == MinimisedState)
        setWindowState(Qt::WindowMinimized);
}

void frmCrystal::StoreGeometry()
{
    const auto save = [](const char *key, int value) {
        TWReg::SaveSettingNumber(ViewerSection, QLatin1String(key), value);
    };
    const bool normal = !(windowState() & (Qt::WindowMinimized | Qt::WindowMaximized));
    if (normal) {
        save("Width", width() * TwipsPerPixel);
        save("Height", height() * TwipsPerPixel);
        save("Top", y() * TwipsPerPixel);
        save("Left", x() * TwipsPerPixel);
    }
    save("WindowState", windowState() & Qt::WindowMaximized   ? MaximisedState
                        : windowState() & Qt::WindowMinimized ? MinimisedState
                                                              : 0);
}
