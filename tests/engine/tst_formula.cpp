#include "TestMain.h"
#include "engine/EngineError.h"
#include "engine/Formula.h"

#include <QDate>

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
    const QStringList m_fields{QStringLiteral("region"), QStringLiteral("amount"),
                               QStringLiteral("order_date"), QStringLiteral("paid"),
                               QStringLiteral("customer")};
    const RecordStore::Row m_row{QStringLiteral("North"), qlonglong(1500), QStringLiteral("2024-02-29"), true,
                                 QStringLiteral("O'Brien")};

    QVariant value(const QString &text)
    {
        Formula formula = Formula::Parse(QStringLiteral("t"), text);
        formula.bind(m_fields, [](const QString &name) {
            if (name == QLatin1String("Regions"))
                return QVariantList{QStringLiteral("South"), QStringLiteral("North")};
            if (name == QLatin1String("Limit"))
                return QVariantList{1000.0};
            return QVariantList();
        });
        return formula.evaluate(m_row);
    }
};

void TestFormula::evaluates_data()
{
    QTest::addColumn<QString>("formula");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("compare") << QStringLiteral("amount >= 1500 and amount < 1500.5") << QVariant(true);
    QTest::newRow("precedence") << QStringLiteral("1 + 2 * 3 = 7 or false") << QVariant(true);
    QTest::newRow("parentheses") << QStringLiteral("(1 + 2) * 3") << QVariant(9.0);
    QTest::newRow("unary") << QStringLiteral("-amount / 4") << QVariant(-375.0);
    QTest::newRow("not binds tighter than and") << QStringLiteral("not paid and true") << QVariant(false);
    QTest::newRow("text equality is exact") << QStringLiteral("region = 'north'") << QVariant(false);
    QTest::newRow("text order") << QStringLiteral("region > 'East' and region <> \"South\"")
                                << QVariant(true);
    QTest::newRow("quote doubled") << QStringLiteral("customer = 'O''Brien'") << QVariant(true);
    QTest::newRow("braced field") << QStringLiteral("{Sales.amount} = 1500") << QVariant(true);
    QTest::newRow("in list") << QStringLiteral("region in ['East', 'North']") << QVariant(true);
    QTest::newRow("not in list") << QStringLiteral("not (region in ('East', 'West'))") << QVariant(true);
    QTest::newRow("in parameter") << QStringLiteral("region in {?Regions}") << QVariant(true);
    QTest::newRow("single parameter") << QStringLiteral("amount > {?Limit}") << QVariant(true);
    QTest::newRow("date literal vs text date")
        << QStringLiteral("order_date = #2024-02-29#") << QVariant(true);
    QTest::newRow("date order") << QStringLiteral("order_date < #2024-03-01 08:00#") << QVariant(true);
    QTest::newRow("date function") << QStringLiteral("order_date > date(2024, 2, 28)") << QVariant(true);
    QTest::newRow("parts of date") << QStringLiteral("year(order_date) * 100 + month(order_date)")
                                   << QVariant(202402.0);
    QTest::newRow("text functions") << QStringLiteral("upper(region) & '-' & lower(trim('  X '))")
                                    << QVariant(QStringLiteral("NORTH-x"));
    QTest::newRow("length") << QStringLiteral("length(customer)") << QVariant(7.0);
    QTest::newRow("round") << QStringLiteral("round(2 / 3, 2)") << QVariant(0.67);
    QTest::newRow("abs") << QStringLiteral("abs(10 - amount)") << QVariant(1490.0);
    QTest::newRow("contains") << QStringLiteral("contains(customer, 'Bri') and startswith(region, 'No')")
                              << QVariant(true);
    QTest::newRow("keywords any case") << QStringLiteral("TRUE AND Not FALSE") << QVariant(true);
    QTest::newRow("division by zero") << QStringLiteral("amount / 0") << QVariant();
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
    Formula formula = Formula::Parse(QStringLiteral("n"), QStringLiteral("amount > 10 or isnull(amount)"));
    formula.bind(m_fields, {});
    QVERIFY(formula.test(withNull));
    Formula compare = Formula::Parse(QStringLiteral("n"), QStringLiteral("amount > 10"));
    compare.bind(m_fields, {});
    QVERIFY(compare.evaluate(withNull).isNull());
    QVERIFY(!compare.test(withNull));
    Formula negated = Formula::Parse(QStringLiteral("n"), QStringLiteral("not (amount > 10)"));
    negated.bind(m_fields, {});
    QVERIFY(!negated.test(withNull)); // unknown stays unknown, it does not turn true
    // SQLite keeps booleans as 0 and 1.
    const RecordStore::Row zeroOne{QStringLiteral("x"), qlonglong(0), QString(), qlonglong(0), QString()};
    Formula unpaid =
        Formula::Parse(QStringLiteral("b"), QStringLiteral("not paid and paid = false and paid <> true"));
    unpaid.bind(m_fields, {});
    QVERIFY(unpaid.test(zeroOne));
    Formula empty = Formula::Parse(QStringLiteral("n"), QStringLiteral("  "));
    QVERIFY(empty.isEmpty());
    QVERIFY(empty.test(m_row));
}

void TestFormula::faultsNameFormulaAndPosition_data()
{
    QTest::addColumn<QString>("formula");
    QTest::addColumn<QString>("expected");
    QTest::newRow("unclosed text") << QStringLiteral("region = 'North")
                                   << QStringLiteral("position 10: text not closed");
    QTest::newRow("missing operand") << QStringLiteral("amount > ")
                                     << QStringLiteral("position 10: the formula ends too early");
    QTest::newRow("stray token") << QStringLiteral("amount 5")
                                 << QStringLiteral("position 8: unexpected \"5\"");
    QTest::newRow("unknown character")
        << QStringLiteral("amount ; 5") << QStringLiteral("position 8: unexpected character");
    QTest::newRow("unknown field") << QStringLiteral("amout > 5")
                                   << QStringLiteral("position 1: unknown field \"amout\"");
    QTest::newRow("unknown function")
        << QStringLiteral("x1(amount)") << QStringLiteral("unknown function \"x1\"");
    QTest::newRow("argument count") << QStringLiteral("upper(region, 1)")
                                    << QStringLiteral("upper takes 1 argument");
    QTest::newRow("bad date") << QStringLiteral("order_date = #2024-02-30#")
                              << QStringLiteral("position 14: \"2024-02-30\" is not a date");
    QTest::newRow("in without list") << QStringLiteral("region in 'North'")
                                     << QStringLiteral("expected a list");
    QTest::newRow("type mismatch") << QStringLiteral("region * 2 > 1")
                                   << QStringLiteral("position 8: \"North\" is not a number");
}

void TestFormula::faultsNameFormulaAndPosition()
{
    QFETCH(QString, formula);
    QFETCH(QString, expected);
    try {
        value(formula);
        QFAIL("the formula must fail");
    } catch (const EngineError &error) {
        QCOMPARE(error.number(), int(EngineError::BadFormula));
        QVERIFY2(error.description().startsWith(QLatin1String("Formula t: ")),
                 qPrintable(error.description()));
        QVERIFY2(error.description().contains(expected), qPrintable(error.description()));
    }
}

// Each level of nesting took stack in the parser and the evaluator: 5,000 of them ended the process.
void TestFormula::deepNestingIsAnError()
{
    const auto fault = [this](const QString &text) {
        try {
            value(text);
        } catch (const EngineError &error) {
            return error.description();
        }
        return QString();
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
