#include "engine/RecordCodec.h"

#include <QDateTime>
#include <cstring>

namespace Engine::RecordCodec {

namespace {

enum Tag : char { Null, False, True, Integer, Real, Text, Date, Time, Moment, Bytes };

void PutBytes(QByteArray &out, const void *data, qsizetype size)
{
    const qsizetype at = out.size();
    out.resize(at + size);
    std::memcpy(out.data() + at, data, size_t(size));
}

template <typename T> void Put(QByteArray &out, T value)
{
    PutBytes(out, &value, sizeof value);
}

template <typename T> T Take(const char *&at)
{
    T value;
    std::memcpy(&value, at, sizeof value);
    at += sizeof value;
    return value;
}

// An invalid time stays invalid: -1 milliseconds are no time of day.
qint32 MillisecondsOf(const QTime &time)
{
    return time.isValid() ? time.msecsSinceStartOfDay() : -1;
}

// A text's characters start at an even place of their block, as a block starts aligned in memory, so
// that they can be read in place as UTF-16.
void PutText(QByteArray &out, const QString &text)
{
    Put<qint32>(out, qint32(text.size()));
    if (out.size() % 2 != 0)
        Put<char>(out, 0);
    PutBytes(out, text.utf16(), text.size() * qsizetype(sizeof(char16_t)));
}

const char *TextStart(const char *at)
{
    return at + (reinterpret_cast<quintptr>(at) % 2);
}

// A moment keeps its wall-clock date and time and how they relate to UTC.
void PutMoment(QByteArray &out, const QDateTime &moment)
{
    // A named zone is kept as its offset at that moment.
    const Qt::TimeSpec zone = moment.timeSpec() == Qt::TimeZone ? Qt::OffsetFromUTC : moment.timeSpec();
    Put<qint64>(out, moment.date().toJulianDay());
    Put<qint32>(out, MillisecondsOf(moment.time()));
    Put<qint8>(out, qint8(zone));
    Put<qint32>(out, zone == Qt::OffsetFromUTC ? moment.offsetFromUtc() : 0);
}

QDateTime TakeMoment(const char *&at)
{
    const QDate date = QDate::fromJulianDay(Take<qint64>(at));
    const QTime time = QTime::fromMSecsSinceStartOfDay(Take<qint32>(at));
    const auto zone = Qt::TimeSpec(Take<qint8>(at));
    const qint32 offset = Take<qint32>(at);
    return zone == Qt::OffsetFromUTC ? QDateTime(date, time, Qt::OffsetFromUTC, offset)
                                     : QDateTime(date, time, zone);
}

void PutValue(QByteArray &out, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType: return Put<char>(out, Null);
    case QMetaType::Bool: return Put<char>(out, value.toBool() ? True : False);
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::LongLong: Put<char>(out, Integer); return Put<qint64>(out, value.toLongLong());
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::ULongLong: Put<char>(out, Real); return Put<double>(out, value.toDouble());
    case QMetaType::QDate: Put<char>(out, Date); return Put<qint64>(out, value.toDate().toJulianDay());
    case QMetaType::QTime: Put<char>(out, Time); return Put<qint32>(out, MillisecondsOf(value.toTime()));
    case QMetaType::QDateTime: Put<char>(out, Moment); return PutMoment(out, value.toDateTime());
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        Put<char>(out, Bytes);
        Put<qint32>(out, qint32(bytes.size()));
        return PutBytes(out, bytes.constData(), bytes.size());
    }
    default:
        // A null of any type stays a null; anything else is kept as its text.
        if (value.isNull())
            return Put<char>(out, Null);
        Put<char>(out, Text);
        // A text is written from where the value holds it, without a copy.
        return PutText(out, value.typeId() == QMetaType::QString
                                ? *static_cast<const QString *>(value.constData())
                                : value.toString());
    }
}

// `skip`: only moves past the value, whose contents are not wanted.
QVariant TakeValue(const char *&at, bool skip = false)
{
    const char tag = Take<char>(at);
    if (skip && tag == Text) {
        const qint32 size = Take<qint32>(at);
        at = TextStart(at) + size * qsizetype(sizeof(char16_t));
        return QVariant();
    }
    if (skip && tag == Bytes) {
        at += Take<qint32>(at);
        return QVariant();
    }
    switch (tag) {
    case False: return false;
    case True: return true;
    case Integer: return Take<qint64>(at);
    case Real: return Take<double>(at);
    case Text: {
        const qint32 size = Take<qint32>(at);
        at = TextStart(at);
        QString text(reinterpret_cast<const QChar *>(at), size);
        at += size * qsizetype(sizeof(char16_t));
        return text;
    }
    case Date: return QDate::fromJulianDay(Take<qint64>(at));
    case Time: return QTime::fromMSecsSinceStartOfDay(Take<qint32>(at));
    case Moment: return TakeMoment(at);
    case Bytes: {
        const qint32 size = Take<qint32>(at);
        QByteArray bytes(at, size);
        at += size;
        return bytes;
    }
    default: return QVariant();
    }
}

} // namespace

void Encode(const QList<QVariant> &row, QByteArray &out)
{
    Put<qint32>(out, qint32(row.size()));
    for (const QVariant &value : row)
        PutValue(out, value);
}

void Encode(int width, const std::function<QVariant(int)> &valueAt, QByteArray &out)
{
    Put<qint32>(out, qint32(width));
    for (int i = 0; i < width; ++i)
        PutValue(out, valueAt(i));
}

void Locate(const char *&at, QVarLengthArray<const char *, 16> &values)
{
    const qint32 width = Take<qint32>(at);
    values.clear();
    for (int i = 0; i < width; ++i) {
        values.append(at);
        TakeValue(at, true);
    }
}

QVariant ValueAt(const char *at)
{
    return TakeValue(at);
}

std::optional<QStringView> TextAt(const char *at)
{
    if (Take<char>(at) != Text)
        return std::nullopt;
    const qint32 size = Take<qint32>(at);
    return QStringView(reinterpret_cast<const char16_t *>(TextStart(at)), size);
}

QList<QVariant> Decode(const char *&at)
{
    const qint32 width = Take<qint32>(at);
    QList<QVariant> row;
    row.reserve(width);
    for (int i = 0; i < width; ++i)
        row.append(TakeValue(at));
    return row;
}

} // namespace Engine::RecordCodec
