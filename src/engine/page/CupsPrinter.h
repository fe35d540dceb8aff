#pragma once
// Printing through CUPS: the installed printers, a rendered PDF sent to one of them with copies and
// orientation, and the job followed until it ends.

#include <QList>
#include <QString>

namespace Engine {

// A printer by the three names the scheduler knows: the queue, its make and model, its device URI.
struct PrinterInfo
{
    QString deviceName;
    QString driverName;
    QString port;
};

class CupsPrinter
{
public:
    // How often a job's state is asked and how long a production wait lasts at most.
    static constexpr int PollIntervalMs = 100;
    static constexpr int DefaultWaitLimitMs = 10 * 60 * 1000;

    // The CUPS destinations, from the server of CUPS_SERVER or the local one. Empty, with `error`
    // set, when the server cannot be asked.
    static QList<PrinterInfo> InstalledPrinters(QString *error = nullptr);
    // The default destination's name, empty when there is none.
    static QString DefaultPrinterName();

    // SelectPrinter: the job goes to the queue `deviceName`; the other two names are kept.
    void select(const QString &driverName, const QString &deviceName, const QString &port);
    PrinterInfo selected() const { return m_selected; }

    // Sends the PDF to the selected printer, or to the default one when none was selected, with
    // `copies` and the paper orientation code (0 the document's own, 1 portrait, 2 landscape).
    // Returns the CUPS job id, or 0 with errorString() saying why.
    int submit(const QString &pdfFile, int copies, int paperOrientation, const QString &title);
    // Polls the job every PollIntervalMs until it ends: ProgressCompleted, ProgressFailed (also when
    // the job cannot be asked about, or when `limitMs` passes first) or ProgressHalted.
    int waitForJob(int jobId, int limitMs = DefaultWaitLimitMs);

    QString errorString() const { return m_error; }

private:
    PrinterInfo m_selected;
    QString m_error;
};

} // namespace Engine
