// Feeds mutated report files to the report reader (Application::OpenReport) for a number of seconds
// and counts the files read and the EngineErrors raised. Any other exception is a finding, saved as
// fuzz-finding-N.rpt in the working folder; a crash leaves its input in the printed folder.
//
// bench_fuzz [SECONDS [SEED]]   (defaults: 60 seconds, seed from the clock)

#include "engine/Application.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <cstdio>

namespace {

// Element and attribute names of the report format, and a few it does not have.
const QList<QByteArray> ElementNames = {"report",
                                        "title",
                                        "table",
                                        "property",
                                        "parameter",
                                        "default",
                                        "value",
                                        "query",
                                        "layout",
                                        "page",
                                        "pageHeader",
                                        "pageFooter",
                                        "column",
                                        "group",
                                        "subtotal",
                                        "grandTotal",
                                        "alert",
                                        "subreport",
                                        "link",
                                        "groupSelection",
                                        "savedData",
                                        "field",
                                        "row",
                                        "v",
                                        "colum",
                                        "x",
                                        ""};
const QList<QByteArray> AttributeNames = {
    "version",     "name",     "location", "dll",       "type",    "multiple", "prompt", "size",
    "orientation", "margins",  "fontSize", "field",     "caption", "width",    "align",  "format",
    "newPage",     "function", "file",     "parameter", "source",  "null",     "x"};
const QList<QByteArray> OddValues = {"",
                                     "0",
                                     "-1",
                                     "1e308",
                                     "nan",
                                     "99999999999999999999",
                                     "true",
                                     "7",
                                     "16",
                                     "landscape",
                                     "A4",
                                     "1 2",
                                     "-5 -5 -5 -5",
                                     "#,##0.00",
                                     "dd-MMM-yyyy",
                                     "{?Region}",
                                     "{value}",
                                     "../demo.db",
                                     "&#0;",
                                     "&#x110000;",
                                     "\xff\xfe",
                                     "region-summary.rpt",
                                     "large-orders-alert.rpt"};

struct Seed
{
    QString name;
    QByteArray content;
};

QList<Seed> ReadSeeds()
{
    QList<Seed> seeds;
    const QString source = QStringLiteral(QORLO_SOURCE_DIR);
    const QStringList folders = {source + QStringLiteral("/demo"),
                                 source + QStringLiteral("/tests/data/engine/exports"),
                                 source + QStringLiteral("/tests/data/run")};
    for (const QString &folder : folders) {
        const QDir dir(folder);
        for (const QString &name : dir.entryList({QStringLiteral("*.rpt")}, QDir::Files, QDir::Name)) {
            QFile file(dir.filePath(name));
            if (file.open(QIODevice::ReadOnly))
                seeds.append({name, file.readAll()});
        }
    }
    return seeds;
}

template <typename T> const T &Pick(QRandomGenerator &random, const QList<T> &list)
{
    return list[random.bounded(qsizetype(list.size()))];
}

QByteArray RandomElement(QRandomGenerator &random)
{
    QByteArray element = '<' + Pick(random, ElementNames);
    for (int i = random.bounded(4); i > 0; --i)
        element += ' ' + Pick(random, AttributeNames) + "=\"" + Pick(random, OddValues) + '"';
    switch (random.bounded(3)) {
    case 0: return element + "/>";
    case 1: return element + '>' + Pick(random, OddValues);
    default: return element + '>' + Pick(random, OddValues) + "</" + Pick(random, ElementNames) + '>';
    }
}

void FlipBits(QRandomGenerator &random, QByteArray &data)
{
    for (int i = 1 + random.bounded(8); i > 0 && !data.isEmpty(); --i)
        data[random.bounded(data.size())] ^= char(1 << random.bounded(8));
}

void Truncate(QRandomGenerator &random, QByteArray &data)
{
    data.truncate(random.bounded(data.size() + 1));
}

// Duplicates, removes or inserts a line, or replaces an attribute's value.
void EditLines(QRandomGenerator &random, QByteArray &data)
{
    QList<QByteArray> lines = data.split('\n');
    const qsizetype at = random.bounded(lines.size());
    switch (random.bounded(4)) {
    case 0: lines.insert(at, lines[random.bounded(lines.size())]); break;
    case 1: lines.removeAt(at); break;
    case 2: lines.insert(at, RandomElement(random)); break;
    default: {
        const qsizetype quote = lines[at].indexOf("=\"");
        const qsizetype end = quote < 0 ? -1 : lines[at].indexOf('"', quote + 2);
        if (end > 0)
            lines[at].replace(quote + 2, end - quote - 2, Pick(random, OddValues));
        else
            lines.insert(at, RandomElement(random));
    }
    }
    data = lines.join('\n');
}

QByteArray Mutate(QRandomGenerator &random, QByteArray data)
{
    for (int i = 1 + random.bounded(3); i > 0; --i) {
        switch (random.bounded(6)) {
        case 0: FlipBits(random, data); break;
        case 1: Truncate(random, data); break;
        default: EditLines(random, data); break;
        }
    }
    return data;
}

// The demo database and the sub-report files beside the input, so that its references resolve.
bool PrepareFolder(const QTemporaryDir &dir)
{
    const QDir demo(QStringLiteral(QORLO_SOURCE_DIR "/demo"));
    for (const QString &name : demo.entryList(QDir::Files))
        if (!QFile::copy(demo.filePath(name), dir.filePath(name)))
            return false;
    return true;
}

struct Figures
{
    qint64 files = 0;
    qint64 opened = 0;
    qint64 errors = 0;
    qint64 findings = 0;
};

void SaveFinding(const QByteArray &input, Figures &figures, const char *what)
{
    ++figures.findings;
    const QString name = QStringLiteral("fuzz-finding-%1.rpt").arg(figures.findings);
    QFile file(name);
    if (file.open(QIODevice::WriteOnly))
        file.write(input);
    std::fprintf(stderr, "finding: %s (input saved as %s)\n", what, qPrintable(name));
}

void ReadOnce(const QString &path, const QByteArray &input, Figures &figures)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("cannot write %s", qPrintable(path));
    file.write(input);
    file.close();
    ++figures.files;
    try {
        Engine::Application application;
        const auto report = application.OpenReport(path);
        ++figures.opened;
    } catch (const Engine::EngineError &) {
        ++figures.errors;
    } catch (const std::exception &error) {
        SaveFinding(input, figures, error.what());
    } catch (...) {
        SaveFinding(input, figures, "an exception that is not a std::exception");
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    const int seconds = arguments.size() > 1 ? arguments[1].toInt() : 60;
    const quint32 seed =
        arguments.size() > 2 ? arguments[2].toUInt() : quint32(QDateTime::currentMSecsSinceEpoch());
    const QList<Seed> seeds = ReadSeeds();
    QTemporaryDir dir;
    if (seconds <= 0 || seeds.isEmpty() || !dir.isValid() || !PrepareFolder(dir)) {
        std::fprintf(stderr,
                     "usage: bench_fuzz [SECONDS [SEED]]; needs the report files of demo/ and tests/data\n");
        return 2;
    }
    // A crash leaves the input that caused it here.
    const QString input = dir.filePath(QStringLiteral("fuzz-input.rpt"));
    std::printf("seed %u, %lld report files, input %s\n", seed, qlonglong(seeds.size()), qPrintable(input));
    std::fflush(stdout);

    QRandomGenerator random(seed);
    Figures figures;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < seconds * 1000LL)
        ReadOnce(input, Mutate(random, Pick(random, seeds).content), figures);

    std::printf("%lld files read in %.1f s: %lld opened, %lld EngineErrors, %lld findings\n",
                qlonglong(figures.files), timer.elapsed() / 1000.0, qlonglong(figures.opened),
                qlonglong(figures.errors), qlonglong(figures.findings));
    return figures.findings == 0 ? 0 : 1;
}
