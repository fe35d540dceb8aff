#include "TestMain.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace TestSupport {

namespace {

quint32 ChooseSeed()
{
    bool given = false;
    const quint32 seed = qEnvironmentVariable("QORLO_TEST_SEED").toUInt(&given);
    return given ? seed : QRandomGenerator::system()->generate();
}

} // namespace

quint32 RandomSeed()
{
    static const quint32 seed = ChooseSeed();
    return seed;
}

void UseOwnHome()
{
    // Nothing a test starts may write into the home folder of whoever runs it.
    static QTemporaryDir home(QDir::tempPath() + u"/qorlo-home-XXXXXX"_s);
    const QDir folder(home.path());
    for (const char *name : {".config", ".local/share", ".cache"})
        folder.mkpath(QString::fromLatin1(name));
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.filePath(u".config"_s)));
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath(u".local/share"_s)));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(folder.filePath(u".cache"_s)));
}

void PrepareEnvironment()
{
    UseOwnHome();
    qputenv("QT_QPA_PLATFORM", "offscreen");
}

int ReportSeed(int failures)
{
    if (failures != 0)
        std::fprintf(stderr, "Random seed of this run: %u (run again with QORLO_TEST_SEED=%u)\n",
                     RandomSeed(), RandomSeed());
    return failures;
}

QString DataFile(const QString &relative)
{
    return QStringLiteral(QORLO_TEST_DATA "/") + relative;
}

} // namespace TestSupport
