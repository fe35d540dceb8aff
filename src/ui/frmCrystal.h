#pragma once
// A report window: one report shown live from its database, with an engine of its own, and the alert
// window of the alerts that fired. Several can be open at once.

#include "frmAlert10.h"

#include "run/RunState.h"

#include <QPointer>
#include <QWidget>

class QorloGlobals;
class ReportViewer;

class frmCrystal : public QWidget
{
    Q_OBJECT
public:
    explicit frmCrystal(QorloGlobals &globals, QWidget *parent = nullptr);
    ~frmCrystal() override;

    // The main window's viewing of a file: a new window for an existing file and the request "View";
    // any other request sets the log-off count to 0 and shows nothing. The window, or null.
    static frmCrystal *ViewFile(QorloGlobals &globals, const QString &file,
                                const QString &request = QStringLiteral("View"));
    // The item editor's preview: the item's report with its stored parameters, its connections and its
    // rows of the table map; a window of `opener`, so that a modal editor leaves it usable.
    static frmCrystal *PreviewItem(QorloGlobals &globals, const QString &reportID, const QString &file,
                                   QWidget *opener);

    // Opens the report and prepares it for the view. `useParameters` would apply the global parameter
    // list, which is always empty here.
    void LoadTCReport(const QString &file, bool useParameters);
    // Asks for the parameters that hold no value, shows the report, waits for the engine and lists the
    // alerts that fired.
    void ViewReport();
    QString ReportCaption() const;
    // Turns the event loop until the engine has ended (completed, failed or halted), at most 10 minutes.
    void WaitForFinish();
    // Narrows the view to the alert's records; an empty name restores the opening selection.
    Q_INVOKABLE void SetAlertSelection(const QString &name, const QString &formula);
    // Sets one parameter to one value, typed by the parameter's value type.
    void LoadTCParm(const QString &tag, const QString &value);
    // The report's print date, applied now or at the next load.
    void SetDate(double date);
    // Places the window in twips; a width and height of 0 leave the size alone.
    void SetSize(int left, int top, int width, int height);
    bool ShowGroupTree() const;
    void SetGroupTree(bool shown);
    // Reads the records again and shows them.
    void RefreshData();
    void FadeIn();
    // The window's opacity, 0 to 255.
    void SetFade(int opacity);
    double StringToDate(const QString &text);
    void Delete();
    // The program ends when this window closes.
    void SetEndOnClose(bool end) { m_endOnClose = end; }

    ReportViewer &Viewer() const { return *m_viewer; }
    Engine::Report *Report() const { return m_run.report.get(); }
    // Empty when the report could be loaded.
    QString ErrorText() const { return m_errorText; }
    // The caption of this window as its alert window knows it; empty while no alert fired.
    QString AlertKey() const { return m_alertKey; }
    frmAlert10 *AlertWindow() const { return m_alertWindow; }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    RunContext Run();
    // LoadTCReport, with the table map rows of the item `reportID` (none when empty).
    void Load(const QString &file, const QString &reportID);
    bool AskParameters();
    void AddTypedValue(Engine::ParameterFieldDefinition &parameter, const QString &value);
    void CheckAlerts();
    void ApplyDate();
    void RestoreGeometry();
    void StoreGeometry();

    QorloGlobals &m_globals;
    // The window's own engine objects, trap, connection error and log-off list.
    RunState m_run;
    ReportViewer *m_viewer;
    QString m_file;
    QString m_openingSelection;
    QString m_errorText;
    bool m_dateFlag = false;
    double m_date = 0;
    QString m_alertKey;
    QPointer<frmAlert10> m_alertWindow;
    bool m_endOnClose = false;
    bool m_closeAfterLoad = false;
};
