#include "ZAXHostIniLastSavedStore.h"

#include "ZAXFeatContainer.h"
#include "ZAXProbeFeatures.h"
#include "ZAXProbeFileSystem.h"
#include "ZAXSysModules.h"

#include <QColor>
#include <QTest>

#include <bit>
#include <cmath>

/// A feature with a value of every kind that is remembered.
class Preset : public ZAXFeatObject
{
    Q_OBJECT
    Q_PROPERTY(QString text READ GetText)
    Q_PROPERTY(double number READ GetNumber)
    Q_PROPERTY(bool isOn READ IsOn)
    Q_PROPERTY(QByteArray bytes READ GetBytes)
    Q_PROPERTY(QColor color READ GetColor)
    Q_PROPERTY(Form form READ GetForm)

public:
    enum class Form
    {
        Sheet,
        Roll,
    };
    Q_ENUM(Form)

    explicit Preset(ZAXFeatContainer* container) : ZAXFeatObject(container, nullptr) {}

    static int IndexOf(const char* property) { return staticMetaObject.indexOfProperty(property); }
    QString GetText() const { return text.GetValue(); }
    double GetNumber() const { return number.GetValue(); }
    bool IsOn() const { return isOn.GetValue(); }
    QByteArray GetBytes() const { return bytes.GetValue(); }
    QColor GetColor() const { return color.GetValue(); }
    Form GetForm() const { return form.GetValue(); }

    ZAXFeatValueProperty<QString> text{this, IndexOf("text"), QStringLiteral("start"), false};
    ZAXFeatValueProperty<double> number{this, IndexOf("number"), 0.5, false};
    ZAXFeatValueProperty<bool> isOn{this, IndexOf("isOn"), false, false};
    ZAXFeatValueProperty<QByteArray> bytes{this, IndexOf("bytes"), QByteArray("start"), false};
    ZAXFeatValueProperty<QColor> color{this, IndexOf("color"), QColor(Qt::red), false};
    ZAXFeatValueProperty<Form> form{this, IndexOf("form"), Form::Sheet, false};
};

/// A type with neither a text nor a place in a file.
struct OwnType
{
    int number = 1;
};

class tst_ZAXHostIniLastSavedStore : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void knowsNothingWithoutAFile();
    void makesTheFileAtTheFirstValue();
    void keepsValuesInASectionPerClass();
    void laterValueReplacesTheEarlier();
    void invalidValueForgets();
    void valueIsThereAtOnceAndAfterwards_data();
    void valueIsThereAtOnceAndAfterwards();
    void doublesKeepEveryBit_data();
    void doublesKeepEveryBit();
    void textsAreReadBack_data();
    void textsAreReadBack();
    void bytesAreReadBack_data();
    void bytesAreReadBack();
    void enumerationIsKeptByName();
    void unnamedEnumeratorIsKeptByNumber();
    void typedValueIsKeptAsText();
    void ownTypeOfAModuleIsNotKept();
    void keepsNothingThatIsTiedToAModule();
    void propertiesAreInitializedFromTheFile();
    void unreadableTextLeavesTheProperty();
    void putsItselfInUseNowhere();

private:
    QString Path() const { return m_folder->PathOf("last saved.ini"); }

    std::unique_ptr<ZAXProbeFolder> m_folder;
    std::unique_ptr<ZAXFeatContainer> m_container;
};

void tst_ZAXHostIniLastSavedStore::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    m_folder = std::make_unique<ZAXProbeFolder>();
    m_container = std::make_unique<ZAXFeatContainer>();
}

void tst_ZAXHostIniLastSavedStore::cleanup()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    m_container.reset();
    m_folder.reset();
}

void tst_ZAXHostIniLastSavedStore::knowsNothingWithoutAFile()
{
    {
        const ZAXHostIniLastSavedStore store(Path());
        QCOMPARE(store.GetValue("Preset", "number"), QVariant());
    }
    QCOMPARE(m_folder->Entries(), QStringList());
}

void tst_ZAXHostIniLastSavedStore::makesTheFileAtTheFirstValue()
{
    const QString path = m_folder->PathOf("new folder ø/last saved.ini");
    {
        ZAXHostIniLastSavedStore store(path);
        store.SetValue("Preset", "number", 2.5);
    }
    const ZAXHostIniLastSavedStore again(path);
    QCOMPARE(again.GetValue("Preset", "number").toDouble(), 2.5);
}

void tst_ZAXHostIniLastSavedStore::keepsValuesInASectionPerClass()
{
    {
        ZAXHostIniLastSavedStore store(Path());
        store.SetValue("Preset", "number", 2.5);
        store.SetValue("Preset", "text", QStringLiteral("Steel"));
        store.SetValue("Other", "number", 7.0);
        store.SetValue("General", "number", 8.0);
        store.SetValue("Shop::Part", "number", 9.0);
    }
    QCOMPARE(m_folder->Read("last saved.ini"), QByteArray("[%General]\n"
                                                          "number=8\n"
                                                          "\n"
                                                          "[Other]\n"
                                                          "number=7\n"
                                                          "\n"
                                                          "[Preset]\n"
                                                          "number=2.5\n"
                                                          "text=Steel\n"
                                                          "\n"
                                                          "[Shop%3A%3APart]\n"
                                                          "number=9\n"));
    const ZAXHostIniLastSavedStore again(Path());
    QCOMPARE(again.GetValue("Preset", "number").toDouble(), 2.5);
    QCOMPARE(again.GetValue("Other", "number").toDouble(), 7.0);
    QCOMPARE(again.GetValue("General", "number").toDouble(), 8.0);
    QCOMPARE(again.GetValue("Shop::Part", "number").toDouble(), 9.0);
    QCOMPARE(again.GetValue("Other", "text"), QVariant());
}

void tst_ZAXHostIniLastSavedStore::laterValueReplacesTheEarlier()
{
    {
        ZAXHostIniLastSavedStore store(Path());
        store.SetValue("Preset", "number", 2.5);
        store.SetValue("Preset", "number", 3.5);
    }
    const ZAXHostIniLastSavedStore again(Path());
    QCOMPARE(again.GetValue("Preset", "number").toDouble(), 3.5);
}

void tst_ZAXHostIniLastSavedStore::invalidValueForgets()
{
    {
        ZAXHostIniLastSavedStore store(Path());
        store.SetValue("Preset", "number", 2.5);
        store.SetValue("Preset", "text", QStringLiteral("kept"));
    }
    {
        ZAXHostIniLastSavedStore store(Path());
        store.SetValue("Preset", "number", QVariant());
        QCOMPARE(store.GetValue("Preset", "number"), QVariant());
    }
    const ZAXHostIniLastSavedStore again(Path());
    QCOMPARE(again.GetValue("Preset", "number"), QVariant());
    QCOMPARE(again.GetValue("Preset", "text").toString(), QStringLiteral("kept"));
}

void tst_ZAXHostIniLastSavedStore::valueIsThereAtOnceAndAfterwards_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("double") << QVariant(0.1);
    QTest::newRow("text") << QVariant(u"Stahl ø, \"blank\""_qs);
    QTest::newRow("true") << QVariant(true);
    QTest::newRow("false") << QVariant(false);
    QTest::newRow("bytes") << QVariant(QByteArray("\0\x01\xff;=", 5));
    QTest::newRow("colour") << QVariant(QColor(1, 2, 3));
    QTest::newRow("colour with transparency") << QVariant(QColor(1, 2, 3, 4));
    QTest::newRow("no colour") << QVariant(QColor());
}

void tst_ZAXHostIniLastSavedStore::valueIsThereAtOnceAndAfterwards()
{
    QFETCH(QVariant, value);
    QVariant atOnce;
    {
        ZAXHostIniLastSavedStore store(Path());
        store.SetValue("Preset", "value", value);
        atOnce = store.GetValue("Preset", "value");
    }
    QVariant afterwards = ZAXHostIniLastSavedStore(Path()).GetValue("Preset", "value");
    QVERIFY(afterwards.convert(value.metaType()));
    QCOMPARE(atOnce, value);
    QCOMPARE(afterwards, value);
}

void tst_ZAXHostIniLastSavedStore::doublesKeepEveryBit_data()
{
    QTest::addColumn<double>("number");
    QTest::newRow("0.1") << 0.1;
    QTest::newRow("1/3") << 1.0 / 3.0;
    QTest::newRow("1e-7") << 1e-7;
    QTest::newRow("5e-324") << 5e-324;
    QTest::newRow("largest") << 1.7976931348623157e308;
    QTest::newRow("123456789.123456789") << 123456789.123456789;
    QTest::newRow("0.3048") << 0.3048;
    QTest::newRow("1234.5") << 1234.5;
    QTest::newRow("negative") << -2.5;
    QTest::newRow("just above 1") << std::nextafter(1.0, 2.0);
}

void tst_ZAXHostIniLastSavedStore::doublesKeepEveryBit()
{
    QFETCH(double, number);
    ZAXHostIniLastSavedStore(Path()).SetValue("Preset", "number", number);
    bool ok = false;
    const double read = ZAXHostIniLastSavedStore(Path()).GetValue("Preset", "number").toDouble(&ok);
    QVERIFY(ok);
    QCOMPARE(std::bit_cast<quint64>(read), std::bit_cast<quint64>(number));
}

void tst_ZAXHostIniLastSavedStore::textsAreReadBack_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << "Generic";
    QTest::newRow("empty") << "";
    QTest::newRow("spaces") << "  two  ";
    QTest::newRow("comma") << "steel, stainless";
    QTest::newRow("semicolon and equals sign") << "a=b;c";
    QTest::newRow("quotes") << "\"quoted\"";
    QTest::newRow("backslash") << "C:\\new\\x41";
    QTest::newRow("percent") << "100 %1";
    QTest::newRow("line end and tab") << "a\nb\tc";
    QTest::newRow("at sign") << "@Invalid()";
    QTest::newRow("brackets") << "[Preset]";
    QTest::newRow("number") << "0.10";
    QTest::newRow("umlaut") << u"Längsträger"_qs;
    QTest::newRow("outside the basic plane") << QString::fromUtf8("\xF0\x9F\x94\xA9");
}

void tst_ZAXHostIniLastSavedStore::textsAreReadBack()
{
    QFETCH(QString, text);
    ZAXHostIniLastSavedStore(Path()).SetValue("Preset", "text", text);
    const QVariant read = ZAXHostIniLastSavedStore(Path()).GetValue("Preset", "text");
    QCOMPARE(read.metaType(), QMetaType::fromType<QString>());
    QCOMPARE(read.toString(), text);
}

void tst_ZAXHostIniLastSavedStore::bytesAreReadBack_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QByteArray all(256, '\0');
    std::iota(all.begin(), all.end(), '\0');
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("key") << QByteArray("{0190b2c4-7a1e-4f0e-9d53-2d6d7a0f6e11}");
    QTest::newRow("all bytes") << all;
}

void tst_ZAXHostIniLastSavedStore::bytesAreReadBack()
{
    QFETCH(QByteArray, bytes);
    ZAXHostIniLastSavedStore(Path()).SetValue("Preset", "bytes", bytes);
    const QVariant read = ZAXHostIniLastSavedStore(Path()).GetValue("Preset", "bytes");
    QCOMPARE(read.metaType(), QMetaType::fromType<QByteArray>());
    QCOMPARE(read.toByteArray(), bytes);
}

void tst_ZAXHostIniLastSavedStore::enumerationIsKeptByName()
{
    ZAXHostIniLastSavedStore(Path()).SetValue("Preset", "form", QVariant::fromValue(Preset::Form::Roll));
    QCOMPARE(m_folder->Read("last saved.ini"), QByteArray("[Preset]\nform=Roll\n"));
}

void tst_ZAXHostIniLastSavedStore::unnamedEnumeratorIsKeptByNumber()
{
    ZAXHostIniLastSavedStore(Path()).SetValue("Preset", "form", QVariant::fromValue(static_cast<Preset::Form>(7)));
    QCOMPARE(m_folder->Read("last saved.ini"), QByteArray("[Preset]\nform=7\n"));
}

void tst_ZAXHostIniLastSavedStore::typedValueIsKeptAsText()
{
    ZAXHostIniLastSavedStore(Path()).SetValue("Preset", "length", QVariant::fromValue(ZAXSysLengthValue(2.5)));
    QVariant read = ZAXHostIniLastSavedStore(Path()).GetValue("Preset", "length");
    QVERIFY(read.convert(QMetaType::fromType<ZAXSysLengthValue>()));
    QCOMPARE(read.value<ZAXSysLengthValue>(), ZAXSysLengthValue(2.5));
}

void tst_ZAXHostIniLastSavedStore::ownTypeOfAModuleIsNotKept()
{
    ZAXHostIniLastSavedStore store(Path());
    store.SetValue("Preset", "own", 1.0);
    QTest::ignoreMessage(QtWarningMsg, "A value of type OwnType cannot be kept: own of Preset.");
    store.SetValue("Preset", "own", QVariant::fromValue(OwnType()));
    QCOMPARE(store.GetValue("Preset", "own"), QVariant());
}

void tst_ZAXHostIniLastSavedStore::keepsNothingThatIsTiedToAModule()
{
    const void* const thisModule = ZAXSysModules::ModuleOf(&Preset::staticMetaObject);
    const QVariant color = QVariant::fromValue(QColor(1, 2, 3));
    QCOMPARE(ZAXSysModules::ModuleOf(color.metaType().iface()), thisModule);
    ZAXHostIniLastSavedStore store(Path());
    store.SetValue("Preset", "color", color);
    store.SetValue("Preset", "form", QVariant::fromValue(Preset::Form::Roll));
    QVERIFY(ZAXSysModules::ModuleOf(store.GetValue("Preset", "color").metaType().iface()) != thisModule);
    QVERIFY(ZAXSysModules::ModuleOf(store.GetValue("Preset", "form").metaType().iface()) != thisModule);
}

void tst_ZAXHostIniLastSavedStore::propertiesAreInitializedFromTheFile()
{
    {
        ZAXHostIniLastSavedStore store(Path());
        ZAXFeatLastSavedStore::SetCurrent(&store);
        auto* const preset = new Preset(m_container.get());
        preset->text.Apply(u"Stahl, ø"_qs);
        preset->number.Apply(1.0 / 3.0);
        preset->isOn.Apply(true);
        preset->bytes.Apply(QByteArray("\0\xff", 2));
        preset->color.Apply(QColor(1, 2, 3, 4));
        preset->form.Apply(Preset::Form::Roll);
        ZAXFeatLastSavedStore::SetCurrent(nullptr);
    }
    ZAXHostIniLastSavedStore store(Path());
    ZAXFeatLastSavedStore::SetCurrent(&store);
    auto* const preset = new Preset(m_container.get());
    const QList<ZAXFeatValuePropertyBase*> properties{&preset->text,  &preset->number, &preset->isOn,
                                                      &preset->bytes, &preset->color,  &preset->form};
    for (ZAXFeatValuePropertyBase* property : properties)
        property->RequestInitialization();
    preset->Initialize();
    QCOMPARE(preset->GetText(), u"Stahl, ø"_qs);
    QCOMPARE(preset->GetNumber(), 1.0 / 3.0);
    QCOMPARE(preset->IsOn(), true);
    QCOMPARE(preset->GetBytes(), QByteArray("\0\xff", 2));
    QCOMPARE(preset->GetColor(), QColor(1, 2, 3, 4));
    QCOMPARE(preset->GetForm(), Preset::Form::Roll);
}

void tst_ZAXHostIniLastSavedStore::unreadableTextLeavesTheProperty()
{
    QVERIFY(m_folder->Write("last saved.ini", "[Preset]\nnumber=thick\nform=Plate\n"));
    ZAXHostIniLastSavedStore store(Path());
    ZAXFeatLastSavedStore::SetCurrent(&store);
    auto* const preset = new Preset(m_container.get());
    preset->number.InitializeValue();
    preset->form.InitializeValue();
    QCOMPARE(preset->GetNumber(), 0.5);
    QCOMPARE(preset->GetForm(), Preset::Form::Sheet);
}

void tst_ZAXHostIniLastSavedStore::putsItselfInUseNowhere()
{
    const ZAXHostIniLastSavedStore store(Path());
    QVERIFY(&ZAXFeatLastSavedStore::GetCurrent() != &store);
}

QTEST_GUILESS_MAIN(tst_ZAXHostIniLastSavedStore)
#include "tst_ZAXHostIniLastSavedStore.moc"
