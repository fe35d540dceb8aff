#pragma once
// Reads a state file line by line as Windows-1252 text (or by its byte-order mark); CR LF, CR and LF
// all end a line.

#include <QList>
#include <QString>
#include <QStringView>

class LineReader
{
public:
    // Reads the whole file; a missing or unreadable file, or one that is no whole file (WholeFile.h),
    // gives no lines.
    explicit LineReader(const QString &path);
    static LineReader FromText(const QString &text);

    bool isOpen() const { return m_open; }
    bool atEnd() const { return m_next >= m_lines.size(); }
    QString readLine() { return readLineView().toString(); }
    // The next line without a copy; it stays valid while the reader lives.
    QStringView readLineView();

private:
    struct Span
    {
        qsizetype start;
        qsizetype length;
    };

    LineReader() = default;
    void split();

    QString m_text;
    QList<Span> m_lines;
    qsizetype m_next = 0;
    bool m_open = false;
};
