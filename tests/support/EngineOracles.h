#pragma once
// What engine tests hold exports against beyond Readers.h: xlrd's cell dump, page images drawn by
// pdftoppm and their pixels, and expected files under tests/data that a deliberate change refreshes.

#include "Files.h"
#include "Peers.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QImage>

namespace EngineOracles {

// The file's bytes; a note that it is missing, which no expected file holds, when it is.
inline QByteArray ReadBytes(const QString &path)
{
    return QFile::exists(path) ? TestSupport::ReadFile(path) : "(missing file " + path.toUtf8() + ')';
}

inline QString ReadUtf8(const QString &path)
{
    return QString::fromUtf8(ReadBytes(path));
}

// What xlrd reads from a workbook: a line per sheet, then a line per cell (tests/peers/xls_dump.py).
inline QString XlsCells(const QString &xls)
{
    return QString::fromUtf8(TestSupport::ProgramOutput(
        TestSupport::DebianPython(), {TestSupport::PeerScript(QStringLiteral("xls_dump.py")), xls}));
}

// Page 1 of a PDF as pdftoppm draws it at `dpi`; a null image when it cannot.
inline QImage FirstPageImage(const QString &pdf, const QString &work, int dpi = 50)
{
    const QString base = QDir(work).filePath(QFileInfo(pdf).completeBaseName() + QStringLiteral("-page"));
    if (!TestSupport::RunProgram(QStringLiteral("pdftoppm"),
                                 {QStringLiteral("-png"), QStringLiteral("-r"), QString::number(dpi),
                                  QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"),
                                  QStringLiteral("1"), QStringLiteral("-singlefile"), pdf, base}))
        return QImage();
    return QImage(base + QStringLiteral(".png"));
}

// The share of pixels (0 to 1) whose grey level differs by more than `tolerance` between two images of
// one size; 1 when the sizes differ.
inline double DifferentPixels(const QImage &a, const QImage &b, int tolerance = 64)
{
    if (a.size() != b.size() || a.isNull())
        return 1;
    const QImage x = a.convertToFormat(QImage::Format_Grayscale8);
    const QImage y = b.convertToFormat(QImage::Format_Grayscale8);
    qint64 different = 0;
    for (int row = 0; row < x.height(); ++row) {
        const uchar *p = x.constScanLine(row);
        const uchar *q = y.constScanLine(row);
        for (int column = 0; column < x.width(); ++column)
            different += std::abs(int(p[column]) - int(q[column])) > tolerance ? 1 : 0;
    }
    return double(different) / (qint64(x.width()) * x.height());
}

// The pixels of `image` within `area` (all of it when null) whose colour lies near `color`: the sum of
// the channels' differences below `distance`.
inline int PixelsNear(const QImage &image, const QColor &color, QRect area = QRect(), int distance = 60)
{
    area = area.isNull() ? image.rect() : area & image.rect();
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            const int apart = std::abs(pixel.red() - color.red()) + std::abs(pixel.green() - color.green()) +
                              std::abs(pixel.blue() - color.blue());
            count += apart < distance ? 1 : 0;
        }
    }
    return count;
}

// The expected file below tests/data; with QORLO_WRITE_GOLDEN set, `actual` replaces it first, so
// that a deliberate change is written and then reviewed as a difference.
inline QByteArray GoldenBytes(const QString &relative, const QByteArray &actual)
{
    const QString path = TestSupport::DataFile(relative);
    if (qEnvironmentVariableIsSet("QORLO_WRITE_GOLDEN")) {
        QDir().mkpath(QFileInfo(path).path());
        TestSupport::WriteFile(path, actual);
    }
    return ReadBytes(path);
}

inline QString Golden(const QString &relative, const QString &actual)
{
    return QString::fromUtf8(GoldenBytes(relative, actual.toUtf8()));
}

// The expected picture below tests/data, written the same way as Golden.
inline QImage GoldenImage(const QString &relative, const QImage &actual)
{
    const QString path = TestSupport::DataFile(relative);
    if (qEnvironmentVariableIsSet("QORLO_WRITE_GOLDEN")) {
        QDir().mkpath(QFileInfo(path).path());
        actual.save(path);
    }
    return QImage(path);
}

} // namespace EngineOracles
