#include "ZAXFeatContainer.h"
#include "ZAXFeatFolder.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatValueProperty.h"
#include "ZAXHostDocument.h"
#include "ZAXHostPlaceholder.h"

#include <QBuffer>
#include <QPoint>
#include <QTest>

#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>

// What features notice of being loaded, and what of them is remembered for new ones.

namespace {

/// What loaded features do in the end.
std::function<void()> atEndOfLoad;
/// The notes that were announced, and the labels.
QStringList heard;

/// A feature with a note and a number that it remembers.
class ZAXProbeNote : public ZAXFeatFolder
{
    Q_OBJECT
    Q_PROPERTY(QString note READ GetNote NOTIFY NoteChanged)
    Q_PROPERTY(double number READ GetNumber NOTIFY NumberChanged)

public:
    Q_INVOKABLE ZAXProbeNote(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXFeatFolder(container, reference)
    {
    }
    Q_INVOKABLE explicit ZAXProbeNote(ZAXFeatContainer* container) : ZAXFeatFolder(container) {}

    QString GetNote() const
    {
        ++reads;
        return note.GetValue();
    }
    double GetNumber() const { return number.GetValue(); }
    QString GetLabel() const override
    {
        ++labels;
        return ZAXFeatFolder::GetLabel();
    }
    void Save(ZAXGeoStream& stream) const override
    {
        ZAXFeatFolder::Save(stream);
        stream << note << number;
    }
    void Load(ZAXGeoStream& stream) override
    {
        ZAXFeatFolder::Load(stream);
        stream >> note >> number;
    }
    void EndStateLoad() override
    {
        ZAXFeatFolder::EndStateLoad();
        // What it does may put another one in its place.
        if (const auto work = atEndOfLoad)
            work();
    }

    ZAXFeatValueProperty<QString> note{this, staticMetaObject.indexOfProperty("note"), QString(), false};
    ZAXFeatValueProperty<double> number{this, staticMetaObject.indexOfProperty("number"), 0, false};
    static int reads;
    static int labels;

signals:
    void NoteChanged(const QString& note);
    void NumberChanged(double number);
};

int ZAXProbeNote::reads = 0;
int ZAXProbeNote::labels = 0;

/// One that listens to itself.
class ZAXProbeDiary : public ZAXProbeNote
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXProbeDiary(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbeNote(container, reference)
    {
        connect(this, &ZAXProbeNote::NoteChanged, this, [](const QString& note) { heard.append(note); });
        connect(this, &ZAXFeatObject::LabelChanged, this, [](const QString& label) { heard.append(label); });
    }
    Q_INVOKABLE explicit ZAXProbeDiary(ZAXFeatContainer* container) : ZAXProbeNote(container) {}
};

/// One whose signal takes something that its property does not convert to.
class ZAXProbeMute : public ZAXFeatFolder
{
    Q_OBJECT
    Q_PROPERTY(QString words READ GetWords NOTIFY WordsChanged)

public:
    Q_INVOKABLE ZAXProbeMute(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXFeatFolder(container, reference)
    {
    }
    Q_INVOKABLE explicit ZAXProbeMute(ZAXFeatContainer* container) : ZAXFeatFolder(container) {}

    QString GetWords() const { return words.GetValue(); }
    void Save(ZAXGeoStream& stream) const override
    {
        ZAXFeatFolder::Save(stream);
        stream << words;
    }
    void Load(ZAXGeoStream& stream) override
    {
        ZAXFeatFolder::Load(stream);
        stream >> words;
    }

    ZAXFeatValueProperty<QString> words{this, staticMetaObject.indexOfProperty("words"), QString(), true};

signals:
    void WordsChanged(const QPoint& point);
};

/// Notes what is kept, in its order.
class Store : public ZAXFeatLastSavedStore
{
public:
    Store() { SetCurrent(this); }
    ~Store() override { SetCurrent(nullptr); }

    QVariant GetValue(const QByteArray& className, const QByteArray& property) const override
    {
        return m_values.value(className + '.' + property);
    }
    void SetValue(const QByteArray& className, const QByteArray& property, const QVariant& value) override
    {
        if (refused == property)
            throw std::runtime_error("There is no room.");
        m_values.insert(className + '.' + property, value);
        noted.append(QString::fromLatin1(className + '.' + property + " = ") + value.toString());
    }

    QStringList noted;
    /// The property whose values are not taken.
    QByteArray refused;

private:
    QHash<QByteArray, QVariant> m_values;
};

} // namespace

class tst_loading : public QObject
{
    Q_OBJECT

private:
    template <typename T>
    T* Create()
    {
        return qobject_cast<T*>(document->GetContainer()->CreateInstance(T::staticMetaObject.className(), nullptr));
    }
    static void Load(ZAXHostDocument& loaded, QByteArray bytes)
    {
        QBuffer buffer(&bytes);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        QVERIFY(loaded.Load(&buffer));
    }

    std::unique_ptr<ZAXHostDocument> document;
    std::unique_ptr<Store> store;

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void whatNobodyHearsIsNotAnnounced();
    void featureHearsItself();
    void signalThatCannotBeRaisedRefusesTheObject();
    void lastValueOfEachPropertyIsRemembered();
    void storeIsUpToDateWhenItIsAsked();
    void storeThatIsChangedTakesWhatCameBefore();
    void loadingWithinALoadKeepsTheOrder();
    void valueThatTheStoreRefusesTakesNoOtherAlong_data();
    void valueThatTheStoreRefusesTakesNoOtherAlong();
    void otherThreadKeepsNothingBack();
    void changesAfterALoadAreAnnouncedAndRemembered();
};

void tst_loading::initTestCase()
{
    for (const QMetaObject* type :
         {&ZAXProbeNote::staticMetaObject, &ZAXProbeDiary::staticMetaObject, &ZAXProbeMute::staticMetaObject})
        ZAXGeoContainer::RegisterType(type);
}

void tst_loading::init()
{
    document = std::make_unique<ZAXHostDocument>();
    store = std::make_unique<Store>();
}

void tst_loading::cleanup()
{
    atEndOfLoad = {};
    heard.clear();
    document.reset();
    store.reset();
}

void tst_loading::whatNobodyHearsIsNotAnnounced()
{
    auto* const note = Create<ZAXProbeNote>();
    note->note.Apply(QLatin1String("new"));
    note->SetLabel(QLatin1String("Label"));
    const QByteArray bytes = document->Encode();
    ZAXProbeNote::reads = 0;
    ZAXProbeNote::labels = 0;
    ZAXHostDocument loaded;
    Load(loaded, bytes);
    QCOMPARE(ZAXProbeNote::reads, 0);
    QCOMPARE(ZAXProbeNote::labels, 0);
    QCOMPARE(loaded.Encode(), bytes);
}

void tst_loading::featureHearsItself()
{
    auto* const diary = Create<ZAXProbeDiary>();
    diary->note.Apply(QLatin1String("new"));
    diary->SetLabel(QLatin1String("Label"));
    ZAXHostDocument loaded;
    Load(loaded, document->Encode());
    QCOMPARE(heard, (QStringList{QLatin1String("Label"), QLatin1String("new")}));
}

void tst_loading::signalThatCannotBeRaisedRefusesTheObject()
{
    auto* const mute = Create<ZAXProbeMute>();
    ZAXHostDocument untouched;
    Load(untouched, document->Encode());
    QVERIFY(qobject_cast<ZAXProbeMute*>(untouched.GetContainer()->GetRoots().constFirst()));
    mute->words.SetValue(QLatin1String("new"), true);
    ZAXHostDocument loaded;
    Load(loaded, document->Encode());
    const auto* const placeholder = qobject_cast<ZAXHostPlaceholder*>(loaded.GetContainer()->GetRoots().constFirst());
    QVERIFY(placeholder);
    QCOMPARE(placeholder->GetReason(), QLatin1String("Could not emit the property changed signal."));
}

void tst_loading::lastValueOfEachPropertyIsRemembered()
{
    for (int i = 1; i < 4; ++i) {
        auto* const note = Create<ZAXProbeNote>();
        note->note.Apply(QString::number(i));
        note->number.Apply(i < 3 ? i : 0);
    }
    const QByteArray bytes = document->Encode();
    store->noted.clear();
    ZAXHostDocument loaded;
    Load(loaded, bytes);
    // In the order in which they were set last.
    QCOMPARE(store->noted,
             (QStringList{QLatin1String("ZAXProbeNote.number = 2"), QLatin1String("ZAXProbeNote.note = 3")}));
}

void tst_loading::storeIsUpToDateWhenItIsAsked()
{
    Create<ZAXProbeNote>()->note.Apply(QLatin1String("first"));
    Create<ZAXProbeNote>()->note.Apply(QLatin1String("second"));
    const QByteArray bytes = document->Encode();
    store->SetValue("ZAXProbeNote", "note", QLatin1String("old"));
    store->noted.clear();
    QStringList seen;
    atEndOfLoad = [&] {
        seen.append(ZAXFeatLastSavedStore::GetCurrent().GetValue("ZAXProbeNote", "note").toString());
        seen.append(document->GetContainer()->GetRoots().isEmpty()
                        ? QString()
                        : qobject_cast<ZAXProbeNote*>(document->GetContainer()->GetRoots().constFirst())
                              ->note.GetLastSavedValue()
                              .toString());
    };
    ZAXHostDocument loaded;
    Load(loaded, bytes);
    QCOMPARE(seen, QStringList(4, QLatin1String("second")));
    QCOMPARE(store->noted, QStringList(QLatin1String("ZAXProbeNote.note = second")));
}

void tst_loading::storeThatIsChangedTakesWhatCameBefore()
{
    Create<ZAXProbeNote>()->note.Apply(QLatin1String("new"));
    const QByteArray bytes = document->Encode();
    store->noted.clear();
    QStringList notedBefore;
    std::unique_ptr<Store> other;
    atEndOfLoad = [&] {
        other = std::make_unique<Store>();
        notedBefore = store->noted;
    };
    ZAXHostDocument loaded;
    Load(loaded, bytes);
    QCOMPARE(notedBefore, QStringList(QLatin1String("ZAXProbeNote.note = new")));
    QVERIFY(other->noted.isEmpty());
}

void tst_loading::loadingWithinALoadKeepsTheOrder()
{
    auto* const note = Create<ZAXProbeNote>();
    note->note.Apply(QLatin1String("inner"));
    const QByteArray inner = document->Encode();
    note->note.Apply(QLatin1String("outer"));
    note->number.Apply(7);
    const QByteArray outer = document->Encode();
    store->noted.clear();
    atEndOfLoad = [&] {
        atEndOfLoad = {};
        ZAXHostDocument other;
        Load(other, inner);
    };
    ZAXHostDocument loaded;
    Load(loaded, outer);
    QCOMPARE(store->GetValue("ZAXProbeNote", "note").toString(), QLatin1String("inner"));
    QCOMPARE(store->GetValue("ZAXProbeNote", "number"), QVariant(7.0));
}

void tst_loading::valueThatTheStoreRefusesTakesNoOtherAlong_data()
{
    QTest::addColumn<QByteArray>("refused");
    QTest::addColumn<QString>("taken");
    QTest::newRow("the first") << QByteArray("note") << QStringLiteral("ZAXProbeNote.number = 7");
    QTest::newRow("the last") << QByteArray("number") << QStringLiteral("ZAXProbeNote.note = new");
}

void tst_loading::valueThatTheStoreRefusesTakesNoOtherAlong()
{
    QFETCH(QByteArray, refused);
    QFETCH(QString, taken);
    auto* const note = Create<ZAXProbeNote>();
    note->note.Apply(QLatin1String("new"));
    note->number.Apply(7);
    const QByteArray bytes = document->Encode();
    store->noted.clear();
    store->refused = refused;
    QTest::ignoreMessage(QtWarningMsg, "The values for new features are not remembered: There is no room.");
    ZAXHostDocument loaded;
    Load(loaded, bytes);
    QCOMPARE(store->noted, QStringList(taken));
    QCOMPARE(loaded.Encode(), bytes);
    // Nor is it kept for later.
    store->refused.clear();
    QVERIFY(&ZAXFeatLastSavedStore::GetCurrent() == store.get());
    QCOMPARE(store->noted, QStringList(taken));
}

void tst_loading::otherThreadKeepsNothingBack()
{
    auto* const note = Create<ZAXProbeNote>();
    note->note.Apply(QLatin1String("of the other thread"));
    const QByteArray other = document->Encode();
    note->note.Apply(QLatin1String("of this thread"));
    const QByteArray own = document->Encode();
    store->noted.clear();
    QStringList notedBefore;
    atEndOfLoad = [&] {
        atEndOfLoad = {};
        // This thread waits in the middle of its own loading.
        std::thread([&] {
            ZAXHostDocument loaded;
            Load(loaded, other);
        }).join();
        notedBefore = store->noted;
    };
    ZAXHostDocument loaded;
    Load(loaded, own);
    QCOMPARE(notedBefore, QStringList(QLatin1String("ZAXProbeNote.note = of the other thread")));
    QCOMPARE(store->noted.mid(1), QStringList(QLatin1String("ZAXProbeNote.note = of this thread")));
}

void tst_loading::changesAfterALoadAreAnnouncedAndRemembered()
{
    Create<ZAXProbeNote>()->note.Apply(QLatin1String("new"));
    ZAXHostDocument loaded;
    Load(loaded, document->Encode());
    auto* const note = qobject_cast<ZAXProbeNote*>(loaded.GetContainer()->GetRoots().constFirst());
    store->noted.clear();
    ZAXProbeNote::reads = 0;
    note->note.Apply(QLatin1String("newer"));
    QCOMPARE(ZAXProbeNote::reads, 1);
    QCOMPARE(store->noted, QStringList(QLatin1String("ZAXProbeNote.note = newer")));
}

QTEST_GUILESS_MAIN(tst_loading)
#include "tst_loading.moc"
