#include "engine/page/CupsPrinter.h"

#include "engine/Codes.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QThread>
#include <cups/cups.h>
#include <memory>

namespace Engine {

namespace {

struct HttpClose
{
    void operator()(http_t *http) const { httpClose(http); }
};
using Connection = std::unique_ptr<http_t, HttpClose>;

// A connection of our own to the server that CUPS_SERVER (or the client configuration) names, so
// that a change of server between calls is seen, which the shared default connection would miss.
Connection Connect(QString *error)
{
    const char *server = cupsServer();
    Connection http(httpConnect2(server, ippPort(), nullptr, AF_UNSPEC, cupsEncryption(), 1, 30000, nullptr));
    if (!http && error)
        *error = QStringLiteral("Cannot reach the print server %1").arg(QString::fromLocal8Bit(server));
    return http;
}

QString LastCupsError()
{
    return QString::fromUtf8(cupsLastErrorString());
}

QString DestOption(const cups_dest_t &dest, const char *name)
{
    return QString::fromUtf8(cupsGetOption(name, dest.num_options, dest.options));
}

// The IPP job-state of a job: 3 pending ... 9 completed; 0 when it cannot be asked.
int JobState(http_t *http, int jobId)
{
    ipp_t *request = ippNewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
    const QByteArray uri = "ipp://localhost/jobs/" + QByteArray::number(jobId);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "job-uri", nullptr, uri.constData());
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    static const char *const attributes[] = {"job-state"};
    ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", 1, nullptr,
                  attributes);
    ipp_t *response = cupsDoRequest(http, request, "/");
    ipp_attribute_t *state = response ? ippFindAttribute(response, "job-state", IPP_TAG_ENUM) : nullptr;
    const int result = state ? ippGetInteger(state, 0) : 0;
    ippDelete(response);
    return result;
}

// The end states of a job as the engine's Progress codes; 0 while the job is not done.
int ProgressOf(int jobState)
{
    switch (jobState) {
    case IPP_JSTATE_COMPLETED: return ProgressCompleted;
    case IPP_JSTATE_CANCELED:
    case IPP_JSTATE_ABORTED: return ProgressFailed;
    case IPP_JSTATE_STOPPED: return ProgressHalted;
    default: return 0;
    }
}

} // namespace

QList<PrinterInfo> CupsPrinter::InstalledPrinters(QString *error)
{
    QList<PrinterInfo> printers;
    const Connection http = Connect(error);
    if (!http)
        return printers;
    cups_dest_t *dests = nullptr;
    const int count = cupsGetDests2(http.get(), &dests);
    if (count == 0 && cupsLastError() > IPP_STATUS_OK_CONFLICTING && error)
        *error = LastCupsError();
    for (int i = 0; i < count; ++i) {
        if (dests[i].instance)
            continue; // an instance is a set of options on a queue listed already
        printers.append(PrinterInfo{QString::fromUtf8(dests[i].name),
                                    DestOption(dests[i], "printer-make-and-model"),
                                    DestOption(dests[i], "device-uri")});
    }
    cupsFreeDests(count, dests);
    return printers;
}

QString CupsPrinter::DefaultPrinterName()
{
    const Connection http = Connect(nullptr);
    if (!http)
        return QString();
    cups_dest_t *dest = cupsGetNamedDest(http.get(), nullptr, nullptr);
    const QString name = dest ? QString::fromUtf8(dest->name) : QString();
    cupsFreeDests(dest ? 1 : 0, dest);
    return name;
}

void CupsPrinter::select(const QString &driverName, const QString &deviceName, const QString &port)
{
    m_selected = PrinterInfo{deviceName, driverName, port};
}

int CupsPrinter::submit(const QString &pdfFile, int copies, int paperOrientation, const QString &title)
{
    m_error.clear();
    const QString printer = m_selected.deviceName.isEmpty() ? DefaultPrinterName() : m_selected.deviceName;
    if (printer.isEmpty()) {
        m_error = QStringLiteral("No printer selected and no default printer");
        return 0;
    }
    if (!QFileInfo(pdfFile).isReadable()) {
        m_error = QStringLiteral("Cannot read %1").arg(pdfFile);
        return 0;
    }
    const Connection http = Connect(&m_error);
    if (!http)
        return 0;

    int optionCount = 0;
    cups_option_t *options = nullptr;
    optionCount =
        cupsAddOption("copies", QByteArray::number(qMax(1, copies)).constData(), optionCount, &options);
    if (paperOrientation == PortraitOrientation || paperOrientation == LandscapeOrientation) {
        const char *requested = paperOrientation == LandscapeOrientation ? "4" : "3";
        optionCount = cupsAddOption("orientation-requested", requested, optionCount, &options);
    }
    const int jobId =
        cupsPrintFile2(http.get(), printer.toUtf8().constData(), QFile::encodeName(pdfFile).constData(),
                       title.toUtf8().constData(), optionCount, options);
    cupsFreeOptions(optionCount, options);
    if (jobId == 0)
        m_error = QStringLiteral("Cannot print to %1: %2").arg(printer, LastCupsError());
    return jobId;
}

int CupsPrinter::waitForJob(int jobId, int limitMs)
{
    m_error.clear();
    const Connection http = Connect(&m_error);
    if (!http)
        return ProgressFailed;
    const QDeadlineTimer deadline(limitMs);
    while (true) {
        const int state = JobState(http.get(), jobId);
        if (state == 0) {
            m_error = QStringLiteral("Cannot follow print job %1: %2").arg(jobId).arg(LastCupsError());
            return ProgressFailed;
        }
        if (const int progress = ProgressOf(state))
            return progress;
        if (deadline.hasExpired()) {
            m_error = QStringLiteral("Print job %1 did not end within %2 s").arg(jobId).arg(limitMs / 1000.0);
            return ProgressFailed;
        }
        QThread::msleep(PollIntervalMs);
    }
}

} // namespace Engine
