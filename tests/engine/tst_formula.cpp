#include "EngineExports.h"
#include "TestMain.h"
#include "engine/Formula.h"

using namespace Engine;
using namespace Qt::Literals::StringLiterals;

class TestFormula : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void evaluates_data();
    void evaluates();
    void nullsAndParameters();
    void faultsNameFormulaAndPosition_data();
    void faultsNameFormulaAndPosition();
    void deepNestingIsAnError();

private:
    const QStringList m_fields{u"region"_s, u"amount"_s, u"order_date"_s, u"paid"_s, u"customer"_s};
    const RecordStore::Row m_row{u"North"_s, qlonglong(1500), u"2024-02-29"_s, true, u"O'Brien"_s};

    // The formula named "t", bound to the fields and the parameters Regions and Limit.
    Formula bound(const QString &text)
    {
        Formula formula = Formula::Parse(u"t"_s, text);
        formula.bind(m_fields, [](const QString &name) {
            if (name == u"Regions"_s)
                return QVariantList{u"South"_s, u"North"_s};
            if (name == u"Limit"_s)
                return QVariantList{1000.0};
            return QVariantList();
        });
        return formula;
    }
    QVariant value(const QString &text) { return bound(text).evaluate(m_row); }
};

void TestFormula::evaluates_data()
{
    QTest::addColumn<QString>("formula");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("compare") << u"amount >= 1500 and amount < 1500.5"_s << QVariant(true);
    QTest::newRow("precedence") << u"1 + 2 * 3 = 7 or false"_s << QVariant(true);
    QTest::newRow("parentheses") << u"(1 + 2) * 3"_s << QVariant(9.0);
    QTest::newRow("unary") << u"-amount / 4"_s << QVariant(-375.0);
    QTest::newRow("not binds tighter than and") << u"not paid and true"_s << QVariant(false);
    QTest::newRow("text equality is exact") << u"region = 'north'"_s << QVariant(false);
    QTest::newRow("text order") << u"region > 'East' and region <> \"South\""_s << QVariant(true);
    QTest::newRow("quote doubled") << u"customer = 'O''Brien'"_s << QVariant(true);
    QTest::newRow("braced field") << u"{Sales.amount} = 1500"_s << QVariant(true);
    QTest::newRow("in list") << u"region in ['East', 'North']"_s << QVariant(true);
    QTest::newRow("not in list") << u"not (region in ('East', 'West'))"_s << QVariant(true);
    QTest::newRow("in parameter") << u"region in {?Regions}"_s << QVariant(true);
    QTest::newRow("single parameter") << u"amount > {?Limit}"_s << QVariant(true);
    QTest::newRow("date literal vs text date") << u"order_date = #2024-02-29#"_s << QVariant(true);
    QTest::newRow("date order") << u"order_date < #2024-03-01 08:00#"_s << QVariant(true);
    QTest::newRow("date function") << u"order_date > date(2024, 2, 28)"_s << QVariant(true);
    QTest::newRow("parts of date") << u"year(order_date) * 100 + month(order_date)"_s << QVariant(202402.0);
    QTest::newRow("text functions") << u"upper(region) & '-' & lower(trim('  X '))"_s
                                    << QVariant(u"NORTH-x"_s);
    QTest::newRow("length") << u"length(customer)"_s << QVariant(7.0);
    QTest::newRow("round") << u"round(2 / 3, 2)"_s << QVariant(0.67);
    QTest::newRow("abs") << u"abs(10 - amount)"_s << QVariant(1490.0);
    QTest::newRow("contains") << u"contains(customer, 'Bri') and startswith(region, 'No')"_s
                              << QVariant(true);
    QTest::newRow("keywords any case") << u"TRUE AND Not FALSE"_s << QVariant(true);
    QTest::newRow("division by zero") << u"amount / 0"_s << QVariant();
}

void TestFormula::evaluates()
{
    QFETCH(QString, formula);
    QFETCH(QVariant, expected);
    const QVariant result = value(formula);
    if (expected.typeId() == QMetaType::Double)
        QCOMPARE(result.toDouble(), expected.toDouble());
    else
        QCOMPARE(result, expected);
}

void TestFormula::nullsAndParameters()
{
    const RecordStore::Row withNull{QVariant(), QVariant(), QVariant(), QVariant(), QVariant()};
    QVERIFY(bound(u"amount > 10 or isnull(amount)"_s).test(withNull));
    QVERIFY(bound(u"amount > 10"_s).evaluate(withNull).isNull());
    QVERIFY(!bound(u"amount > 10"_s).test(withNull));
    QVERIFY(!bound(u"not (amount > 10)"_s).test(withNull)); // unknown stays unknown, it does not turn true
    // SQLite keeps booleans as 0 and 1.
    const RecordStore::Row zeroOne{u"x"_s, qlonglong(0), QString(), qlonglong(0), QString()};
    QVERIFY(bound(u"not paid and paid = false and paid <> true"_s).test(zeroOne));
    Formula empty = Formula::Parse(u"n"_s, u"  "_s);
    QVERIFY(empty.isEmpty());
    QVERIFY(empty.test(m_row));
}

void TestFormula::faultsNameFormulaAndPosition_data()
{
    QTest::addColumn<QString>("formula");
    QTest::addColumn<QString>("expected");
    QTest::newRow("unclosed text") << u"region = 'North"_s << u"position 10: text not closed"_s;
    QTest::newRow("missing operand") << u"amount > "_s << u"position 10: the formula ends too early"_s;
    QTest::newRow("stray token") << u"amount 5"_s << u"position 8: unexpected \"5\""_s;
    QTest::newRow("unknown character") << u"amount ; 5"_s << u"position 8: unexpected character"_s;
    QTest::newRow("unknown field") << u"amout > 5"_s << u"position 1: unknown field \"amout\""_s;
    QTest::newRow("unknown function") << u"x1(amount)"_s << u"unknown function \"x1\""_s;
    QTest::newRow("argument count") << u"upper(region, 1)"_s << u"upper takes 1 argument"_s;
    QTest::newRow("bad date") << u"order_date = #2024-02-30#"_s
                              << u"position 14: \"2024-02-30\" is not a date"_s;
    QTest::newRow("in without list") << u"region in 'North'"_s << u"expected a list"_s;
    QTest::newRow("type mismatch") << u"region * 2 > 1"_s << u"position 8: \"North\" is not a number"_s;
}

void TestFormula::faultsNameFormulaAndPosition()
{
    QFETCH(QString, formula);
    QFETCH(QString, expected);
    const TestSupport::EngineFailure failure = TestSupport::FailureOf([&] { value(formula); });
    QCOMPARE(failure.number, int(EngineError::BadFormula));
    QVERIFY2(failure.description.startsWith(u"Formula t: "_s), qPrintable(failure.description));
    QVERIFY2(failure.description.contains(expected), qPrintable(failure.description));
}

// Each level of nesting took stack in the parser and the evaluator: 5,000 of them ended the process.
void TestFormula::deepNestingIsAnError()
{
    const auto fault = [this](const QString &text) {
        return TestSupport::FailureOf([&] { value(text); }).description;
    };
    const QString tooDeep = u"Formula t: position %1: nested more than 500 levels deep"_s;
    const auto repeated = [](const QString &part, int times) { return part.repeated(times); };

    QCOMPARE(fault(repeated(u"("_s, 5000) + u"amount"_s + repeated(u")"_s, 5000)), tooDeep.arg(501));
    QCOMPARE(fault(repeated(u"not "_s, 5000) + u"paid"_s), tooDeep.arg(2001));
    QCOMPARE(fault(repeated(u"-"_s, 5000) + u"amount"_s), tooDeep.arg(501));
    QCOMPARE(fault(repeated(u"abs("_s, 5000) + u"amount"_s + repeated(u")"_s, 5000)), tooDeep.arg(2001));
    QCOMPARE(fault(u"1 in ["_s + repeated(u"(1 in ["_s, 3000) + u"1"_s + repeated(u"])"_s, 3000) + u"]"_s),
             tooDeep.arg(13 + 7 * 249));
    // A chain of operators nests one level a term, as it is worked out left to right.
    QCOMPARE(fault(u"amount"_s + repeated(u" + 1"_s, 30000) + u" > 0"_s), tooDeep.arg(8 + 4 * 499));

    // Up to the bound a formula works, and a chain of "and" or "or" does not nest at all.
    QCOMPARE(value(repeated(u"("_s, 499) + u"amount"_s + repeated(u")"_s, 499)), QVariant(1500.0));
    QCOMPARE(value(repeated(u"paid and "_s, 30000) + u"region = 'North'"_s), QVariant(true));
    QCOMPARE(value(repeated(u"not paid or "_s, 30000) + u"amount < 0"_s), QVariant(false));
}

QORLO_TEST_MAIN(TestFormula)
#include "tst_formula.moc"
