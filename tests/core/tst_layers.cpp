// The include graph of src/ against the layer order: a folder includes only folders above it, and the
// engine includes nothing of the project outside itself.
#include "TestMain.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

class TestLayers : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void checkerFindsWrongIncludes();
    void sourceTreeKeepsLayers();
};

namespace {

const QStringList LayerOrder = {
    QStringLiteral("core"),      QStringLiteral("store"),  QStringLiteral("calendar"), QStringLiteral("log"),
    QStringLiteral("connect"),   QStringLiteral("engine"), QStringLiteral("mail"),     QStringLiteral("run"),
    QStringLiteral("scheduler"), QStringLiteral("ui"),     QStringLiteral("app")};
const QString Engine = QStringLiteral("engine");

struct LayerReport
{
    QStringList violations; // "file:line: why", paths relative to the scanned root
    QSet<QString> folders;  // the layer folders that hold code
};

QString FolderOf(const QString &relativePath)
{
    return relativePath.section(QLatin1Char('/'), 0, 0);
}

// The path below `root` that an include names, as the compiler finds it: a quoted name beside the
// including file first, then below root; empty for a header from outside the project.
QString Resolve(const QDir &root, const QString &includingFile, const QString &name, bool quoted)
{
    if (quoted) {
        const QString beside = QFileInfo(includingFile).dir().filePath(name);
        if (QFileInfo::exists(beside))
            return root.relativeFilePath(QDir::cleanPath(beside));
    }
    if (QFileInfo::exists(root.filePath(name)) || LayerOrder.contains(FolderOf(name)))
        return QDir::cleanPath(name);
    return QString();
}

QString IncludeViolation(const QString &from, const QString &target)
{
    const QString to = FolderOf(target);
    if (to == from)
        return QString();
    if (from == Engine)
        return QStringLiteral("the engine includes %1 from outside itself").arg(target);
    if (!LayerOrder.contains(to))
        return QStringLiteral("includes %1 from outside the layers").arg(target);
    if (LayerOrder.indexOf(to) > LayerOrder.indexOf(from))
        return QStringLiteral("includes %1 from %2, a layer below %3").arg(target, to, from);
    return QString();
}

LayerReport CheckLayers(const QString &rootPath)
{
    static const QRegularExpression include(QStringLiteral(R"(^\s*#\s*include\s*([<"])([^">]+)[">])"));
    const QDir root(rootPath);
    LayerReport report;
    QDirIterator it(rootPath, {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString relative = root.relativeFilePath(path);
        const QString from = FolderOf(relative);
        if (!LayerOrder.contains(from)) {
            report.violations.append(relative + QStringLiteral(": not in a layer folder"));
            continue;
        }
        report.folders.insert(from);
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            report.violations.append(relative + QStringLiteral(": cannot be read"));
            continue;
        }
        int lineNumber = 0;
        while (!file.atEnd()) {
            const QString line = QString::fromUtf8(file.readLine());
            ++lineNumber;
            const QRegularExpressionMatch match = include.match(line);
            if (!match.hasMatch())
                continue;
            const QString target =
                Resolve(root, path, match.captured(2), match.captured(1) == QLatin1String("\""));
            if (target.isEmpty())
                continue;
            const QString why = IncludeViolation(from, target);
            if (!why.isEmpty())
                report.violations.append(relative + QLatin1Char(':') + QString::number(lineNumber) +
                                         QStringLiteral(": ") + why);
        }
    }
    report.violations.sort();
    return report;
}

} // namespace

// A small tree with one wrong include for each rule and a folder that is no layer; the right includes
// beside them (same folder, a subfolder of the engine, upper layers, Qt headers, a comment) pass.
void TestLayers::checkerFindsWrongIncludes()
{
    const LayerReport report = CheckLayers(QStringLiteral(QORLO_SOURCE_DIR "/tests/data/layers"));
    QCOMPARE(
        report.violations,
        (QStringList{QStringLiteral("core/Wrong.cpp:2: includes store/Item.h from store, a layer below core"),
                     QStringLiteral("engine/Engine.h:4: the engine includes core/Base.h from outside itself"),
                     QStringLiteral("extra/Loose.h: not in a layer folder")}));
}

void TestLayers::sourceTreeKeepsLayers()
{
    const LayerReport report = CheckLayers(QStringLiteral(QORLO_SOURCE_DIR "/src"));
    QVERIFY2(report.violations.isEmpty(), qPrintable(report.violations.join(QLatin1Char('\n'))));
    // Every layer holds code, so the scan did read the tree.
    QCOMPARE(report.folders, QSet<QString>(LayerOrder.begin(), LayerOrder.end()));
}

QORLO_TEST_MAIN(TestLayers)
#include "tst_layers.moc"
