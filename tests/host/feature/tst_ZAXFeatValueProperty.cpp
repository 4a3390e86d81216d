#include "ZAXFeatValueProperty.h"

#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXProbeFeatures.h"
#include "ZAXProbeJournal.h"
#include "ZAXSysDefinedValue.h"

#include <QColor>
#include <QSignalSpy>
#include <QTest>

namespace {

template <typename T>
using Value = ZAXFeatValueProperty<T>;

const QString cannotEmit = QStringLiteral("Could not emit the property changed signal.");

} // namespace

/// A feature with a value property for every kind of value and every kind of notify signal.
class Gauge : public ZAXFeatObject
{
    Q_OBJECT
    Q_CLASSINFO("inputProps", "text number")
    Q_PROPERTY(QString text READ GetText NOTIFY TextChanged)
    Q_PROPERTY(double number READ GetNumber NOTIFY NumberChanged)
    Q_PROPERTY(bool isOn READ IsOn NOTIFY IsOnChanged)
    Q_PROPERTY(QByteArray bytes READ GetBytes NOTIFY BytesChanged)
    Q_PROPERTY(QColor color READ GetColor NOTIFY ColorChanged)
    Q_PROPERTY(Scale scale READ GetScale NOTIFY ScaleChanged)
    Q_PROPERTY(ZAXSysLengthValue length READ GetLength NOTIFY LengthChanged)
    Q_PROPERTY(ZAXSysLengthValue label READ GetLength NOTIFY LabelTextChanged)
    Q_PROPERTY(ZAXSysLengthValue any READ GetLength NOTIFY AnyChanged)
    Q_PROPERTY(ZAXSysLengthValue whole READ GetLength NOTIFY WholeChanged)
    Q_PROPERTY(double mute READ GetNumber)
    Q_PROPERTY(double bare READ GetNumber NOTIFY BareChanged)
    Q_PROPERTY(double pair READ GetNumber NOTIFY PairChanged)
    Q_PROPERTY(ZAXSysLengthValue misfit READ GetLength NOTIFY MisfitChanged)

public:
    enum class Scale
    {
        Linear,
        Logarithmic,
    };
    Q_ENUM(Scale)

    explicit Gauge(ZAXFeatContainer* container) : ZAXFeatObject(container, nullptr) {}

    static int IndexOf(const char* property) { return staticMetaObject.indexOfProperty(property); }
    template <typename T>
    Value<T> Make(const char* property, const T& start)
    {
        return Value<T>(this, IndexOf(property), start, false);
    }

    QString GetText() const { return text.GetValue(); }
    double GetNumber() const { return number.GetValue(); }
    bool IsOn() const { return isOn.GetValue(); }
    QByteArray GetBytes() const { return bytes.GetValue(); }
    QColor GetColor() const { return color.GetValue(); }
    Scale GetScale() const { return scale.GetValue(); }
    ZAXSysLengthValue GetLength() const { return ZAXSysLengthValue(length.GetValue()); }

    Value<QString> text{this, IndexOf("text"), QStringLiteral("start"), false};
    Value<double> number{this, IndexOf("number"), 1.0, false};
    Value<bool> isOn{this, IndexOf("isOn"), false, false};
    Value<QByteArray> bytes{this, IndexOf("bytes"), QByteArray(), false};
    Value<QColor> color{this, IndexOf("color"), QColor(Qt::red), false};
    Value<Scale> scale{this, IndexOf("scale"), Scale::Linear, false};
    Value<double> length{this, IndexOf("length"), 1.0, false};
    Value<double> skipping{this, IndexOf("number"), 1.0, true};
    Value<double> unbound{this, -1, 1.0, false};

signals:
    void TextChanged(const QString& text);
    void NumberChanged(double number);
    void IsOnChanged(bool isOn);
    void BytesChanged(const QByteArray& bytes);
    void ColorChanged(const QColor& color);
    void ScaleChanged(Gauge::Scale scale);
    void LengthChanged(double length);
    void LabelTextChanged(const QString& length);
    void AnyChanged(const QVariant& length);
    void WholeChanged(const ZAXSysLengthValue& length);
    void BareChanged();
    void PairChanged(double number, double more);
    void MisfitChanged(const QByteArray& length);
};

/// A kind of gauge that takes one property more as its input.
class FineGauge : public Gauge
{
    Q_OBJECT
    Q_CLASSINFO("inputProps", "text number length")

public:
    using Gauge::Gauge;
};

class tst_ZAXFeatValueProperty : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void knowsItsFeatureAndItsIndex();
    void isInputWhenTheClassNamesIt();
    void derivedClassMayNameMoreInputs();
    void unboundPropertyIsNoInput();
    void hasNoLimits();
    void startsAsItsDefault();

    void equalValueChangesNothing();
    void changeNotifiesBehindTheChange();
    void silentChangeIsAChangeWithoutSignal();
    void everyKindOfValueNotifies();
    void notifiesWithTheConvertedValue();
    void notifiesWithTheValueAsItIs();
    void signalWithoutParameterIsRaised();
    void propertyWithoutSignalIsSilent();
    void unboundPropertyIsSilent();
    void signalOfTwoParametersIsRefused();
    void signalOfAnotherKindIsRefused();
    void refusedSignalLeavesTheValueChanged();

    void changesMayNest();
    void closingWithoutAnOpenChangeIsRefused();
    void changeLeftByAnExceptionIsClosedWithoutSignal();
    void throwingSlotLeavesTheChangeClosed();

    void changeIsRememberedAsLastSaved();
    void skippingPropertyIsNotRemembered();
    void equalValueIsNotRemembered();
    void setValueAloneRemembersNothing();
    void rememberedByTheFeaturesOwnClass();
    void unboundPropertyRemembersNothing();

    void initializationConverts_data();
    void initializationConverts();
    void initializationKeepsTheValue_data();
    void initializationKeepsTheValue();
    void initializationIsNoChange();
    void enumerationIsInitializedFromItsNumber();
    void requestedPropertiesAreInitializedWithTheFeature();
    void requestOfADestroyedPropertyIsForgotten();
    void recreatedFeatureIsNeverInitialized();

    void writesTheValue();
    void readsAndApplies();
    void readingAnEqualValueDoesNothing();
    void readingKeepsSkippedValuesUnremembered();
    void readingPastTheEndKeepsTheValue();

private:
    std::unique_ptr<ZAXFeatContainer> m_container;
    Gauge* m_gauge = nullptr;
};

void tst_ZAXFeatValueProperty::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    m_container = std::make_unique<ZAXFeatContainer>();
    m_gauge = new Gauge(m_container.get());
    m_gauge->Initialize();
}

void tst_ZAXFeatValueProperty::knowsItsFeatureAndItsIndex()
{
    QCOMPARE(m_gauge->number.GetFeature(), m_gauge);
    QCOMPARE(m_gauge->number.GetPropertyIndex(), m_gauge->metaObject()->indexOfProperty("number"));
    QCOMPARE(m_gauge->unbound.GetFeature(), m_gauge);
    QCOMPARE(m_gauge->unbound.GetPropertyIndex(), -1);
    QVERIFY(m_gauge->skipping.IsSkippingLastSaved());
    QVERIFY(!m_gauge->number.IsSkippingLastSaved());
}

void tst_ZAXFeatValueProperty::isInputWhenTheClassNamesIt()
{
    QVERIFY(m_gauge->text.IsInputProperty());
    QVERIFY(m_gauge->number.IsInputProperty());
    QVERIFY(!m_gauge->length.IsInputProperty());
}

void tst_ZAXFeatValueProperty::derivedClassMayNameMoreInputs()
{
    const FineGauge gauge(m_container.get());
    QVERIFY(gauge.length.IsInputProperty());
}

void tst_ZAXFeatValueProperty::unboundPropertyIsNoInput()
{
    QVERIFY(!m_gauge->unbound.IsInputProperty());
}

void tst_ZAXFeatValueProperty::hasNoLimits()
{
    QVERIFY(!m_gauge->number.HasLimits());
    QVERIFY(m_gauge->number.TestLimits(-1e300));
    QVERIFY(m_gauge->number.TestLimits(QVariant()));
    QCOMPARE(m_gauge->number.GetMinLimit(), QVariant());
    QVERIFY(!m_gauge->number.GetMinLimitInclusion());
    QCOMPARE(m_gauge->number.GetMaxLimit(), QVariant());
    QVERIFY(!m_gauge->number.GetMaxLimitInclusion());
}

void tst_ZAXFeatValueProperty::startsAsItsDefault()
{
    QCOMPARE(m_gauge->text.GetValue(), QStringLiteral("start"));
    QCOMPARE(m_gauge->number.GetValue(), 1.0);
    QCOMPARE(m_gauge->color.GetValue(), QColor(Qt::red));
}

void tst_ZAXFeatValueProperty::equalValueChangesNothing()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    const QSignalSpy spy(m_gauge, &Gauge::NumberChanged);
    QVERIFY(!m_gauge->number.SetValue(1.0, false));
    QVERIFY(!m_gauge->number.SetValue(1.0, true));
    QVERIFY(!m_gauge->number.Apply(1.0));
    QCOMPARE(journal.Take(), QStringList());
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatValueProperty::changeNotifiesBehindTheChange()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    connect(m_gauge, &Gauge::NumberChanged, this, [this](double number) {
        ZAXProbeJournal::Note(QStringLiteral("signal %1 while %2").arg(number).arg(m_gauge->GetNumber()));
    });
    QVERIFY(m_gauge->number.SetValue(2.5, false));
    QCOMPARE(m_gauge->number.GetValue(), 2.5);
    QCOMPARE(journal.Take(), Entries("about to change Gauge \n changed Gauge \n signal 2.5 while 2.5"));
}

void tst_ZAXFeatValueProperty::silentChangeIsAChangeWithoutSignal()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    const QSignalSpy spy(m_gauge, &Gauge::NumberChanged);
    QVERIFY(m_gauge->number.SetValue(2.5, true));
    QCOMPARE(m_gauge->number.GetValue(), 2.5);
    QCOMPARE(journal.Take(), Entries("about to change Gauge \n changed Gauge"));
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatValueProperty::everyKindOfValueNotifies()
{
    const QSignalSpy text(m_gauge, &Gauge::TextChanged);
    const QSignalSpy isOn(m_gauge, &Gauge::IsOnChanged);
    const QSignalSpy bytes(m_gauge, &Gauge::BytesChanged);
    const QSignalSpy color(m_gauge, &Gauge::ColorChanged);
    const QSignalSpy scale(m_gauge, &Gauge::ScaleChanged);
    m_gauge->text.SetValue(QStringLiteral("new"), false);
    m_gauge->isOn.SetValue(true, false);
    m_gauge->bytes.SetValue("\x01\x02", false);
    m_gauge->color.SetValue(QColor(1, 2, 3, 4), false);
    m_gauge->scale.SetValue(Gauge::Scale::Logarithmic, false);
    QCOMPARE(text.toList(), QList<QVariantList>{{QStringLiteral("new")}});
    QCOMPARE(isOn.toList(), QList<QVariantList>{{true}});
    QCOMPARE(bytes.toList(), QList<QVariantList>{{QByteArray("\x01\x02")}});
    QCOMPARE(color.toList(), QList<QVariantList>{{QColor(1, 2, 3, 4)}});
    QCOMPARE(scale.toList(), QList<QVariantList>{{QVariant::fromValue(Gauge::Scale::Logarithmic)}});
}

void tst_ZAXFeatValueProperty::notifiesWithTheConvertedValue()
{
    const QSignalSpy number(m_gauge, &Gauge::LengthChanged);
    const QSignalSpy text(m_gauge, &Gauge::LabelTextChanged);
    Value<double> label(m_gauge, Gauge::IndexOf("label"), 1.0, false);
    m_gauge->length.SetValue(0.1, false);
    label.SetValue(2.0, false);
    QCOMPARE(number.toList(), QList<QVariantList>{{0.1}});
    QCOMPARE(text.toList(), QList<QVariantList>{{QStringLiteral("0.1 mm")}});
}

void tst_ZAXFeatValueProperty::notifiesWithTheValueAsItIs()
{
    const QSignalSpy any(m_gauge, &Gauge::AnyChanged);
    const QSignalSpy whole(m_gauge, &Gauge::WholeChanged);
    Value<double> anyProperty(m_gauge, Gauge::IndexOf("any"), 1.0, false);
    Value<double> wholeProperty(m_gauge, Gauge::IndexOf("whole"), 1.0, false);
    m_gauge->length.SetValue(0.25, true);
    anyProperty.SetValue(2.0, false);
    wholeProperty.SetValue(2.0, false);
    const QVariant value = QVariant::fromValue(ZAXSysLengthValue(0.25));
    QCOMPARE(any.toList(), QList<QVariantList>{{value}});
    QCOMPARE(whole.toList(), QList<QVariantList>{{value}});
}

void tst_ZAXFeatValueProperty::signalWithoutParameterIsRaised()
{
    const QSignalSpy spy(m_gauge, &Gauge::BareChanged);
    Value<double> bare(m_gauge, Gauge::IndexOf("bare"), 1.0, false);
    QVERIFY(bare.SetValue(2.0, false));
    QCOMPARE(spy.toList(), QList<QVariantList>{{}});
}

void tst_ZAXFeatValueProperty::propertyWithoutSignalIsSilent()
{
    Value<double> mute(m_gauge, Gauge::IndexOf("mute"), 1.0, false);
    QVERIFY(mute.SetValue(2.0, false));
    QCOMPARE(mute.GetValue(), 2.0);
}

void tst_ZAXFeatValueProperty::unboundPropertyIsSilent()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    QVERIFY(m_gauge->unbound.SetValue(2.0, false));
    QCOMPARE(journal.Take(), Entries("about to change Gauge \n changed Gauge"));
}

void tst_ZAXFeatValueProperty::signalOfTwoParametersIsRefused()
{
    const QSignalSpy spy(m_gauge, &Gauge::PairChanged);
    Value<double> pair(m_gauge, Gauge::IndexOf("pair"), 1.0, false);
    QCOMPARE(MessageOf([&] { pair.SetValue(2.0, false); }), cannotEmit);
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatValueProperty::signalOfAnotherKindIsRefused()
{
    const QSignalSpy spy(m_gauge, &Gauge::MisfitChanged);
    Value<double> misfit(m_gauge, Gauge::IndexOf("misfit"), 1.0, false);
    QCOMPARE(MessageOf([&] { misfit.SetValue(2.0, false); }), cannotEmit);
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatValueProperty::refusedSignalLeavesTheValueChanged()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    Value<double> pair(m_gauge, Gauge::IndexOf("pair"), 1.0, false);
    QCOMPARE(MessageOf([&] { pair.Apply(2.0); }), cannotEmit);
    QCOMPARE(pair.GetValue(), 2.0);
    QCOMPARE(journal.Take(), Entries("about to change Gauge \n changed Gauge"));
    QCOMPARE(ZAXFeatObjectPrivate::Get(*m_gauge).openChanges, 0);
    QCOMPARE(pair.GetLastSavedValue(), QVariant());
}

void tst_ZAXFeatValueProperty::changesMayNest()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    connect(m_gauge, &Gauge::NumberChanged, this, [] { ZAXProbeJournal::Note(QStringLiteral("number")); });
    connect(m_gauge, &Gauge::TextChanged, this, [] { ZAXProbeJournal::Note(QStringLiteral("text")); });
    m_gauge->text.BeginModify();
    m_gauge->number.SetValue(2.0, false);
    m_gauge->number.SetValue(3.0, false);
    m_gauge->text.EndModify(false);
    QCOMPARE(journal.Take(), Entries("about to change Gauge \n number \n number \n changed Gauge \n text"));
}

void tst_ZAXFeatValueProperty::closingWithoutAnOpenChangeIsRefused()
{
    const QSignalSpy spy(m_gauge, &Gauge::NumberChanged);
    const QString message = QStringLiteral("A change was closed that was never opened.");
    QCOMPARE(MessageOf([&] { m_gauge->number.EndModify(false); }), message);
    m_gauge->number.BeginModify();
    m_gauge->number.EndModify(true);
    QCOMPARE(MessageOf([&] { m_gauge->number.EndModify(true); }), message);
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatValueProperty::changeLeftByAnExceptionIsClosedWithoutSignal()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    const QSignalSpy spy(m_gauge, &Gauge::NumberChanged);
    const auto leave = [this] {
        const ZAXFeatPropertyChange change(m_gauge->number);
        throw ZAXSysException(QStringLiteral("left"));
    };
    QCOMPARE(MessageOf(leave), QStringLiteral("left"));
    QCOMPARE(journal.Take(), Entries("about to change Gauge \n changed Gauge"));
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatValueProperty::throwingSlotLeavesTheChangeClosed()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    const auto connection =
        connect(m_gauge, &Gauge::NumberChanged, this, [] { throw ZAXSysException(QStringLiteral("from a slot")); });
    QCOMPARE(MessageOf([&] { m_gauge->number.SetValue(2.0, false); }), QStringLiteral("from a slot"));
    QCOMPARE(m_gauge->number.GetValue(), 2.0);
    disconnect(connection);
    m_gauge->number.SetValue(3.0, false);
    QCOMPARE(journal.Take(),
             Entries("about to change Gauge \n changed Gauge \n about to change Gauge \n changed Gauge"));
}

void tst_ZAXFeatValueProperty::changeIsRememberedAsLastSaved()
{
    QCOMPARE(m_gauge->number.GetLastSavedValue(), QVariant());
    QVERIFY(m_gauge->number.Apply(2.5));
    QCOMPARE(m_gauge->number.GetLastSavedValue(), QVariant(2.5));
    QCOMPARE(ZAXFeatLastSavedStore::GetCurrent().GetValue("Gauge", "number"), QVariant(2.5));
    QVERIFY(m_gauge->text.Apply(QStringLiteral("new")));
    QCOMPARE(ZAXFeatLastSavedStore::GetCurrent().GetValue("Gauge", "text"), QVariant(QStringLiteral("new")));
}

void tst_ZAXFeatValueProperty::skippingPropertyIsNotRemembered()
{
    QVERIFY(m_gauge->skipping.Apply(2.5));
    QCOMPARE(m_gauge->skipping.GetValue(), 2.5);
    QCOMPARE(m_gauge->skipping.GetLastSavedValue(), QVariant());
}

void tst_ZAXFeatValueProperty::equalValueIsNotRemembered()
{
    QVERIFY(!m_gauge->number.Apply(1.0));
    QCOMPARE(m_gauge->number.GetLastSavedValue(), QVariant());
}

void tst_ZAXFeatValueProperty::setValueAloneRemembersNothing()
{
    QVERIFY(m_gauge->number.SetValue(2.5, false));
    QCOMPARE(m_gauge->number.GetLastSavedValue(), QVariant());
}

void tst_ZAXFeatValueProperty::rememberedByTheFeaturesOwnClass()
{
    FineGauge fine(m_container.get());
    fine.number.Apply(4.0);
    QCOMPARE(m_gauge->number.GetLastSavedValue(), QVariant());
    QCOMPARE(ZAXFeatLastSavedStore::GetCurrent().GetValue("FineGauge", "number"), QVariant(4.0));
}

void tst_ZAXFeatValueProperty::unboundPropertyRemembersNothing()
{
    QVERIFY(m_gauge->unbound.Apply(2.5));
    QCOMPARE(m_gauge->unbound.GetLastSavedValue(), QVariant());
}

void tst_ZAXFeatValueProperty::initializationConverts_data()
{
    QTest::addColumn<QVariant>("saved");
    QTest::addColumn<double>("number");
    QTest::newRow("double") << QVariant(0.1) << 0.1;
    QTest::newRow("int") << QVariant(3) << 3.0;
    QTest::newRow("text, as a file gives") << QVariant(QStringLiteral("0.1")) << 0.1;
    QTest::newRow("text with an exponent") << QVariant(QStringLiteral("1e-7")) << 1e-7;
    QTest::newRow("typed value") << QVariant::fromValue(ZAXSysLengthValue(2.5)) << 2.5;
}

void tst_ZAXFeatValueProperty::initializationConverts()
{
    QFETCH(QVariant, saved);
    QFETCH(double, number);
    m_gauge->number.SetLastSavedValue(saved);
    m_gauge->number.InitializeValue();
    QCOMPARE(std::bit_cast<quint64>(m_gauge->number.GetValue()), std::bit_cast<quint64>(number));
}

void tst_ZAXFeatValueProperty::initializationKeepsTheValue_data()
{
    QTest::addColumn<QVariant>("saved");
    QTest::newRow("none") << QVariant();
    QTest::newRow("other text") << QVariant(QStringLiteral("thick"));
    QTest::newRow("empty text") << QVariant(QString());
    QTest::newRow("list") << QVariant(QVariantList{2.0});
    QTest::newRow("colour") << QVariant(QColor(Qt::red));
}

void tst_ZAXFeatValueProperty::initializationKeepsTheValue()
{
    QFETCH(QVariant, saved);
    m_gauge->number.SetLastSavedValue(saved);
    m_gauge->number.InitializeValue();
    QCOMPARE(m_gauge->number.GetValue(), 1.0);
}

void tst_ZAXFeatValueProperty::initializationIsNoChange()
{
    m_gauge->number.SetLastSavedValue(2.5);
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    const QSignalSpy spy(m_gauge, &Gauge::NumberChanged);
    m_gauge->number.InitializeValue();
    QCOMPARE(m_gauge->number.GetValue(), 2.5);
    QCOMPARE(journal.Take(), QStringList());
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatValueProperty::enumerationIsInitializedFromItsNumber()
{
    m_gauge->scale.SetLastSavedValue(1);
    m_gauge->scale.InitializeValue();
    QCOMPARE(m_gauge->scale.GetValue(), Gauge::Scale::Logarithmic);
}

void tst_ZAXFeatValueProperty::requestedPropertiesAreInitializedWithTheFeature()
{
    m_gauge->number.SetLastSavedValue(2.5);
    m_gauge->text.SetLastSavedValue(QStringLiteral("saved"));
    auto* const gauge = new Gauge(m_container.get());
    gauge->number.RequestInitialization();
    gauge->number.RequestInitialization();
    QCOMPARE(gauge->number.GetValue(), 1.0);
    gauge->Initialize();
    QCOMPARE(gauge->number.GetValue(), 2.5);
    QCOMPARE(gauge->text.GetValue(), QStringLiteral("start"));
    gauge->number.SetLastSavedValue(7.0);
    gauge->Initialize();
    QCOMPARE(gauge->number.GetValue(), 2.5);
}

void tst_ZAXFeatValueProperty::requestOfADestroyedPropertyIsForgotten()
{
    auto* const gauge = new Gauge(m_container.get());
    auto property = std::make_unique<Value<double>>(gauge, Gauge::IndexOf("number"), 1.0, false);
    property->RequestInitialization();
    property.reset();
    QVERIFY(ZAXFeatObjectPrivate::Get(*gauge).initializations.isEmpty());
    gauge->Initialize();
}

void tst_ZAXFeatValueProperty::recreatedFeatureIsNeverInitialized()
{
    ZAXFeatLastSavedStore::GetCurrent().SetValue("ZAXProbePart", "length", 2.5);
    auto* const recreated = new ZAXProbePart(m_container.get(), ZAXGeoGeometryRef::FromId(100));
    recreated->Initialize();
    QCOMPARE(recreated->length.GetValue(), 1.0);
    auto* const made = new ZAXProbePart(m_container.get());
    made->Initialize();
    QCOMPARE(made->length.GetValue(), 2.5);
}

void tst_ZAXFeatValueProperty::writesTheValue()
{
    ZAXGeoStream stream(m_container.get());
    m_gauge->text.SetValue(u"ø"_qs, true);
    stream << m_gauge->text << m_gauge->number << m_gauge->isOn << m_gauge->bytes;
    QCOMPARE(stream.GetPayload().toHex(' '), QByteArray("00 00 00 02 00 f8 "
                                                        "3f f0 00 00 00 00 00 00 "
                                                        "00 "
                                                        "ff ff ff ff"));
}

void tst_ZAXFeatValueProperty::readsAndApplies()
{
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("400400000000000000000002"
                                                               "00f8"));
    const QSignalSpy number(m_gauge, &Gauge::NumberChanged);
    const QSignalSpy text(m_gauge, &Gauge::TextChanged);
    stream >> m_gauge->number >> m_gauge->text;
    QCOMPARE(m_gauge->number.GetValue(), 2.5);
    QCOMPARE(m_gauge->text.GetValue(), u"ø"_qs);
    QCOMPARE(number.toList(), QList<QVariantList>{{2.5}});
    QCOMPARE(text.toList(), QList<QVariantList>{{u"ø"_qs}});
    QCOMPARE(m_gauge->number.GetLastSavedValue(), QVariant(2.5));
    QVERIFY(stream.GetDataStream().atEnd());
}

void tst_ZAXFeatValueProperty::readingAnEqualValueDoesNothing()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("3ff0000000000000"));
    const QSignalSpy spy(m_gauge, &Gauge::NumberChanged);
    stream >> m_gauge->number;
    QCOMPARE(journal.Take(), QStringList());
    QCOMPARE(spy.count(), 0);
    QCOMPARE(m_gauge->number.GetLastSavedValue(), QVariant());
}

void tst_ZAXFeatValueProperty::readingKeepsSkippedValuesUnremembered()
{
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("4004000000000000"));
    stream >> m_gauge->skipping;
    QCOMPARE(m_gauge->skipping.GetValue(), 2.5);
    QCOMPARE(m_gauge->skipping.GetLastSavedValue(), QVariant());
}

void tst_ZAXFeatValueProperty::readingPastTheEndKeepsTheValue()
{
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("40040000"));
    const QSignalSpy spy(m_gauge, &Gauge::NumberChanged);
    stream >> m_gauge->number >> m_gauge->text;
    QCOMPARE(m_gauge->number.GetValue(), 1.0);
    QCOMPARE(m_gauge->text.GetValue(), QStringLiteral("start"));
    QCOMPARE(spy.count(), 0);
    QCOMPARE(stream.GetDataStream().status(), QDataStream::ReadPastEnd);
}

QTEST_GUILESS_MAIN(tst_ZAXFeatValueProperty)
#include "tst_ZAXFeatValueProperty.moc"
