// The record store keeps every value as it came, in memory or spooled to its temporary file.

#include "TestMain.h"
#include "engine/RecordStore.h"

#include <QDateTime>
#include <QRandomGenerator>

using namespace Engine;
using namespace Qt::Literals::StringLiterals;

namespace {

// A row of every kind of value a database gives, different for each number.
RecordStore::Row Sample(int n)
{
    const QDate day = QDate(2024, 1, 1).addDays(n % 400);
    return {n % 7 == 0 ? QVariant() : QVariant(qlonglong(n) * 1000003),
            n * 0.25,
            n % 2 == 0,
            u"Row %1: Łódź 陳志明 😀 \"quoted\""_s.arg(n),
            day,
            QTime(n % 24, n % 60, n % 60),
            QDateTime(day, QTime(13, 45, 30), Qt::OffsetFromUTC, 3600 * (n % 5)),
            QDateTime(day, QTime(8, 0), Qt::UTC),
            QByteArray(n % 50, char(n)),
            QString()};
}

} // namespace

class TestRecordStore : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void valuesComeBackAsTheyWent();
    void copiesKeepApart();
};

// The exports read texts in place as UTF-16, which must stand at even addresses (undefined behaviour
// otherwise, which the sanitizer stops at).
void TestRecordStore::valuesComeBackAsTheyWent()
{
    for (const qint64 bound : {RecordStore::DefaultMemoryBound, qint64(4096)}) {
        RecordStore store(bound);
        constexpr int Rows = 5000;
        QList<int> order;
        for (int n = 0; n < Rows; ++n) {
            store.append(Sample(n));
            order.append(n);
        }
        QCOMPARE(store.count(), Rows);
        QCOMPARE(store.spooled(), bound < RecordStore::DefaultMemoryBound);
        // In order, in a random order across the blocks, and the last rows of the open block.
        for (int n = 0; n < Rows; ++n)
            QCOMPARE(store.row(n), Sample(n));
        QRandomGenerator random(TestSupport::RandomSeed());
        for (int i = 0; i < 2000; ++i) {
            const int n = int(random.bounded(Rows));
            QCOMPARE(store.row(n), Sample(n));
        }
        QCOMPARE(store.row(Rows - 1)[3].toString(), u"Row 4999: Łódź 陳志明 😀 \"quoted\""_s);
        QVERIFY(store.row(0)[0].isNull());
        QCOMPARE(store.row(3)[6].toDateTime().offsetFromUtc(), 3 * 3600);
        int visited = 0;
        store.visit(order, [&](const RecordView &view) {
            const std::optional<QStringView> text = view.text(3);
            QVERIFY(text);
            QCOMPARE(reinterpret_cast<quintptr>(text->data()) % alignof(char16_t), quintptr(0));
            QCOMPARE(text->toString(), Sample(visited++)[3].toString());
        });
        QCOMPARE(visited, Rows);
    }
}

void TestRecordStore::copiesKeepApart()
{
    RecordStore store(2048);
    for (int n = 0; n < 3000; ++n)
        store.append(Sample(n));
    RecordStore copy = store;
    copy.append(Sample(3000));
    store.append(Sample(-1));
    QCOMPARE(copy.count(), 3001);
    QCOMPARE(store.count(), 3001);
    QCOMPARE(copy.row(3000), Sample(3000));
    QCOMPARE(store.row(3000), Sample(-1));
    QCOMPARE(copy.row(1234), store.row(1234));
    copy.clear();
    QCOMPARE(copy.count(), 0);
    QCOMPARE(store.count(), 3001);
}

QORLO_TEST_MAIN(TestRecordStore)
#include "tst_recordstore.moc"
