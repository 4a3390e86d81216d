#include "ZAXFreshProcess.h"
#include "ZAXSysAbstractEnumLocalization.h"
#include "ZAXSysModules.h"

#include <QCoreApplication>
#include <QMetaEnum>
#include <QTest>
#include <QTranslator>

/// Enumerations as a module's classes declare them. Each test takes one of its own, since labels are process-wide.
class Stock : public QObject
{
    Q_OBJECT

public:
    enum class Form
    {
        Sheet = 0,
        Roll = 1,
        Offcut = 7,
    };
    Q_ENUM(Form)

    enum Finish
    {
        Plain,
        Brushed,
    };
    Q_ENUM(Finish)

    enum class Grade
    {
        A = 10,
        B = 20,
    };
    Q_ENUM(Grade)

    enum class Side
    {
        Front,
        Back,
    };
    Q_ENUM(Side)

    enum class Grain
    {
        Along,
        Across,
    };
    Q_ENUM(Grain)

    enum class Unlabelled
    {
        None = 3,
    };
    Q_ENUM(Unlabelled)
};

namespace Shelf {
Q_NAMESPACE
enum class Place
{
    Top = 4,
};
Q_ENUM_NS(Place)
} // namespace Shelf

namespace {

using Labels = ZAXSysAbstractEnumLocalization;

template <typename Enum>
int IdOf()
{
    return QMetaType::fromType<Enum>().id();
}

QString EnglishLabel(int value)
{
    return value == 1 ? QStringLiteral("Coil") : QStringLiteral("Sheet metal %1").arg(value);
}

/// Translates every text into the one it is made with.
class OneWordTranslator : public QTranslator
{
public:
    explicit OneWordTranslator(const QString& word) : m_word(word) {}
    QString translate(const char*, const char*, const char*, int) const override { return m_word; }
    bool isEmpty() const override { return false; }

private:
    QString m_word;
};

} // namespace

class tst_ZAXSysAbstractEnumLocalization : public QObject
{
    Q_OBJECT

private slots:
    void readsText_data();
    void readsText();
    void labelGoesBeforeTheEnumeratorsName();
    void givesTheLabelOfAValue();
    void givesTheValuesInTheOrderOfRegistration();
    void unknownEnumerationHasNoLabels();
    void unlabelledEnumerationIsReadByItsNames();
    void enumerationOfANamespaceIsReadByItsNames();
    void languageIsThatOfTheCall();
    void secondRegistrationReplacesTheFirst();
    void ignoresAnEmptyLabelFunctionAndNoType();
    void registrationEndsWithItsModule();
};

void tst_ZAXSysAbstractEnumLocalization::readsText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    QTest::newRow("label") << "Coil" << 1;
    QTest::newRow("label of the first value") << "Sheet metal 0" << 0;
    QTest::newRow("label of a value out of line") << "Sheet metal 7" << 7;
    QTest::newRow("enumerator's own name") << "Roll" << 1;
    QTest::newRow("first enumerator's own name") << "Sheet" << 0;
    QTest::newRow("own name of a value out of line") << "Offcut" << 7;
    QTest::newRow("neither") << "Plate" << -1;
    QTest::newRow("empty") << "" << -1;
    QTest::newRow("null") << QString() << -1;
    QTest::newRow("label in another case") << "coil" << -1;
    QTest::newRow("name in another case") << "roll" << -1;
    QTest::newRow("scoped name") << "Form::Roll" << -1;
    QTest::newRow("fully scoped name") << "Stock::Form::Roll" << -1;
    QTest::newRow("number") << "1" << -1;
    QTest::newRow("spaces around") << " Coil " << -1;
    QTest::newRow("beginning of a label") << "Coi" << -1;
    QTest::newRow("two names") << "Sheet|Roll" << -1;
}

void tst_ZAXSysAbstractEnumLocalization::readsText()
{
    QFETCH(QString, text);
    QFETCH(int, value);
    Labels::RegisterValueLocalization(IdOf<Stock::Form>(), {0, 1, 7}, EnglishLabel);
    QCOMPARE(Labels::StringToInteger(IdOf<Stock::Form>(), text), value);
}

void tst_ZAXSysAbstractEnumLocalization::labelGoesBeforeTheEnumeratorsName()
{
    // The label of one value is the name of the other.
    const auto swapped = [](int value) { return value == 0 ? QStringLiteral("Back") : QStringLiteral("Front"); };
    Labels::RegisterValueLocalization(IdOf<Stock::Side>(), {0, 1}, swapped);
    QCOMPARE(Labels::StringToInteger(IdOf<Stock::Side>(), QStringLiteral("Back")), 0);
    QCOMPARE(Labels::StringToInteger(IdOf<Stock::Side>(), QStringLiteral("Front")), 1);
}

void tst_ZAXSysAbstractEnumLocalization::givesTheLabelOfAValue()
{
    Labels::RegisterValueLocalization(IdOf<Stock::Form>(), {0, 1, 7}, EnglishLabel);
    QCOMPARE(Labels::IntegerToString(IdOf<Stock::Form>(), 1), QStringLiteral("Coil"));
    QCOMPARE(Labels::IntegerToString(IdOf<Stock::Form>(), 7), QStringLiteral("Sheet metal 7"));
    QCOMPARE(Labels::IntegerToString(IdOf<Stock::Form>(), 2), QString());
    QCOMPARE(Labels::IntegerToString(IdOf<Stock::Form>(), -1), QString());
}

void tst_ZAXSysAbstractEnumLocalization::givesTheValuesInTheOrderOfRegistration()
{
    Labels::RegisterValueLocalization(IdOf<Stock::Grade>(), {20, 10}, EnglishLabel);
    QCOMPARE(Labels::GetValues(IdOf<Stock::Grade>()), QList<int>({20, 10}));
}

void tst_ZAXSysAbstractEnumLocalization::unknownEnumerationHasNoLabels()
{
    QCOMPARE(Labels::GetValues(IdOf<Stock::Unlabelled>()), QList<int>());
    QCOMPARE(Labels::IntegerToString(IdOf<Stock::Unlabelled>(), 3), QString());
    QCOMPARE(Labels::StringToInteger(IdOf<Stock::Unlabelled>(), QStringLiteral("Some")), -1);
    QCOMPARE(Labels::StringToInteger(0, QStringLiteral("None")), -1);
    QCOMPARE(Labels::StringToInteger(IdOf<QString>(), QStringLiteral("None")), -1);
    QCOMPARE(Labels::StringToInteger(123456789, QStringLiteral("None")), -1);
    QCOMPARE(Labels::GetValues(123456789), QList<int>());
}

void tst_ZAXSysAbstractEnumLocalization::unlabelledEnumerationIsReadByItsNames()
{
    QCOMPARE(Labels::StringToInteger(IdOf<Stock::Unlabelled>(), QStringLiteral("None")), 3);
}

void tst_ZAXSysAbstractEnumLocalization::enumerationOfANamespaceIsReadByItsNames()
{
    QCOMPARE(Labels::StringToInteger(IdOf<Shelf::Place>(), QStringLiteral("Top")), 4);
}

void tst_ZAXSysAbstractEnumLocalization::languageIsThatOfTheCall()
{
    const auto label = [](int value) {
        return value == 1 ? QCoreApplication::translate("Stock", "Across") : QStringLiteral("Along");
    };
    const int id = IdOf<Stock::Grain>();
    Labels::RegisterValueLocalization(id, {0, 1}, label);
    OneWordTranslator german(QStringLiteral("Quer"));
    QVERIFY(QCoreApplication::installTranslator(&german));
    QCOMPARE(Labels::IntegerToString(id, 1), QStringLiteral("Quer"));
    QCOMPARE(Labels::StringToInteger(id, QStringLiteral("Quer")), 1);
    QCOMPARE(Labels::StringToInteger(id, QStringLiteral("Across")), 1);
    QCoreApplication::removeTranslator(&german);
    QCOMPARE(Labels::IntegerToString(id, 1), QStringLiteral("Across"));
    QCOMPARE(Labels::StringToInteger(id, QStringLiteral("Quer")), -1);
}

void tst_ZAXSysAbstractEnumLocalization::secondRegistrationReplacesTheFirst()
{
    const int id = IdOf<Stock::Finish>();
    Labels::RegisterValueLocalization(id, {0, 1}, [](int) { return QStringLiteral("Old"); });
    Labels::RegisterValueLocalization(id, {1}, [](int) { return QStringLiteral("New"); });
    QCOMPARE(Labels::GetValues(id), QList<int>({1}));
    QCOMPARE(Labels::StringToInteger(id, QStringLiteral("New")), 1);
    QCOMPARE(Labels::StringToInteger(id, QStringLiteral("Old")), -1);
    QCOMPARE(Labels::IntegerToString(id, 0), QString());
}

void tst_ZAXSysAbstractEnumLocalization::ignoresAnEmptyLabelFunctionAndNoType()
{
    Labels::RegisterValueLocalization(IdOf<Stock::Form>(), {0, 1, 7}, EnglishLabel);
    Labels::RegisterValueLocalization(IdOf<Stock::Form>(), {0}, {});
    Labels::RegisterValueLocalization(0, {5}, EnglishLabel);
    QCOMPARE(Labels::GetValues(IdOf<Stock::Form>()), QList<int>({0, 1, 7}));
    QCOMPARE(Labels::GetValues(0), QList<int>());
}

void tst_ZAXSysAbstractEnumLocalization::registrationEndsWithItsModule()
{
    const QStringList labels = InAFreshProcess([] {
        const int id = IdOf<Stock::Form>();
        Labels::RegisterValueLocalization(id, {0, 1, 7}, EnglishLabel);
        QStringList seen{Labels::IntegerToString(id, 1)};
        ZAXSysModules::Leave(ZAXSysModules::ModuleOf(reinterpret_cast<const void*>(&qVersion)));
        seen.append(Labels::IntegerToString(id, 1));
        ZAXSysModules::Leave(ZAXSysModules::ModuleOf(&Stock::staticMetaObject));
        seen.append(QStringLiteral("<%1>").arg(Labels::IntegerToString(id, 1)));
        return seen;
    });
    QCOMPARE(labels, QStringList({QStringLiteral("Coil"), QStringLiteral("Coil"), QStringLiteral("<>")}));
}

QTEST_GUILESS_MAIN(tst_ZAXSysAbstractEnumLocalization)
#include "tst_ZAXSysAbstractEnumLocalization.moc"
