#include "ZAXFeatContainer.h"
#include "ZAXHostDocument.h"
#include "ZAXHostTransaction.h"
#include "ZAXHostUndo.h"
#include "ZAXProbeModules.h"

#include <QColor>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>

// Steps of which nothing but values of bound properties is known: what is restored is the whole feature all the same.

namespace {

/// A value that cannot be kept at times.
struct Frail
{
    int number = 0;

    friend bool operator==(const Frail&, const Frail&) = default;
    friend QDataStream& operator<<(QDataStream& stream, const Frail& frail)
    {
        ZAXProbeData::Run("keeping");
        if (frail.number == 13)
            throw std::runtime_error("No such number is kept.");
        return stream << frail.number;
    }
    friend QDataStream& operator>>(QDataStream& stream, Frail& frail) { return stream >> frail.number; }
};

/// A number that takes the note along, in the middle of its own change.
class LeadingProperty : public ZAXFeatValueProperty<double>
{
public:
    using ZAXFeatValueProperty::ZAXFeatValueProperty;

    void EndModify(bool silent) override
    {
        follower->SetValue(QString::number(GetValue()), silent);
        ZAXFeatValueProperty::EndModify(silent);
    }

    ZAXFeatValueProperty<QString>* follower = nullptr;
};

/// A text that labels its feature in the middle of its own change.
class TitleProperty : public ZAXFeatValueProperty<QString>
{
public:
    using ZAXFeatValueProperty::ZAXFeatValueProperty;

    void EndModify(bool silent) override
    {
        GetFeature()->SetLabel(GetValue());
        ZAXFeatValueProperty::EndModify(silent);
    }
};

/// A part with bound properties of several types.
class ZAXProbeSheet : public ZAXProbePart
{
    Q_OBJECT
    Q_PROPERTY(QString note READ GetNote NOTIFY NoteChanged)
    Q_PROPERTY(double weight READ GetWeight NOTIFY WeightChanged)
    Q_PROPERTY(QColor color READ GetColor NOTIFY ColorChanged)
    Q_PROPERTY(QByteArray key READ GetKey)
    Q_PROPERTY(bool isOn READ IsOn)
    Q_PROPERTY(QString title READ GetTitle)
    Q_PROPERTY(double lead READ GetLead)
    Q_PROPERTY(double shown READ GetShown NOTIFY ShownChanged)
    Q_PROPERTY(QString remark READ GetRemark)
    Q_PROPERTY(Frail frail READ GetFrail)

public:
    Q_INVOKABLE ZAXProbeSheet(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
        lead.follower = &note;
    }
    Q_INVOKABLE explicit ZAXProbeSheet(ZAXFeatContainer* container) : ZAXProbePart(container) { lead.follower = &note; }

    QString GetNote() const { return note.GetValue(); }
    double GetWeight() const { return weight.GetValue(); }
    QColor GetColor() const { return color.GetValue(); }
    QByteArray GetKey() const { return key.GetValue(); }
    bool IsOn() const { return isOn.GetValue(); }
    QString GetTitle() const { return title.GetValue(); }
    double GetLead() const { return lead.GetValue(); }
    double GetShown() const { return shown.GetValue(); }
    QString GetRemark() const { return remark.GetValue(); }
    Frail GetFrail() const { return frail.GetValue(); }

    void Save(ZAXGeoStream& stream) const override
    {
        ++saves;
        ZAXProbeData::Run("Save of a sheet");
        ZAXProbePart::Save(stream);
        stream << static_cast<const ZAXFeatValueProperty<double>&>(lead) << note << weight << color << key << isOn
               << static_cast<const ZAXFeatValueProperty<QString>&>(title) << frail.GetValue().number;
        if (isOn.GetValue())
            stream << remark;
    }
    void Load(ZAXGeoStream& stream) override
    {
        ZAXProbePart::Load(stream);
        ZAXProbeData::Run("Load of a sheet");
        Frail kept;
        stream >> static_cast<ZAXFeatValueProperty<double>&>(lead) >> note >> weight >> color >> key >> isOn >>
            static_cast<ZAXFeatValueProperty<QString>&>(title) >> kept.number;
        frail.SetValue(kept, false);
        if (isOn.GetValue())
            stream >> remark;
    }

    ZAXFeatValueProperty<QString> note{this, Index("note"), QString(), true};
    ZAXFeatValueProperty<double> weight{this, Index("weight"), 0, true};
    ZAXFeatValueProperty<QColor> color{this, Index("color"), QColor(), true};
    ZAXFeatValueProperty<QByteArray> key{this, Index("key"), QByteArray(), true};
    ZAXFeatValueProperty<bool> isOn{this, Index("isOn"), false, true};
    TitleProperty title{this, Index("title"), QString(), true};
    LeadingProperty lead{this, Index("lead"), 0, true};
    /// Not saved.
    ZAXFeatValueProperty<double> shown{this, Index("shown"), 0, true};
    /// Saved while the sheet is on.
    ZAXFeatValueProperty<QString> remark{this, Index("remark"), QString(), true};
    ZAXFeatValueProperty<Frail> frail{this, Index("frail"), Frail(), true};
    /// Bound to the same property as another one, as long as it is there.
    std::optional<ZAXFeatValueProperty<double>> temporary;
    mutable int saves = 0;

signals:
    void NoteChanged(const QString& note);
    void WeightChanged(double weight);
    void ColorChanged(const QColor& color);
    void ShownChanged(double shown);

private:
    static int Index(const char* property) { return staticMetaObject.indexOfProperty(property); }
};

/// Changes a sheet.
using Change = void (*)(ZAXProbeSheet&);

} // namespace

Q_DECLARE_METATYPE(Change)

class tst_undo_values : public QObject
{
    Q_OBJECT

private:
    ZAXHostUndo& Undo() { return document->GetUndo(); }
    QUndoStack& Stack() { return *Undo().GetStack(); }

    std::unique_ptr<ZAXHostDocument> document;
    ZAXProbeSheet* sheet = nullptr;
    ZAXProbeSheet* other = nullptr;

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void changeIsTakenBackAndDoneAgain_data();
    void changeIsTakenBackAndDoneAgain();
    void changesOfOneTransactionAreOneStep_data();
    void changesOfOneTransactionAreOneStep();
    void changesAreRolledBack_data();
    void changesAreRolledBack();
    void whatIsAsBeforeIsNoStep_data();
    void whatIsAsBeforeIsNoStep();
    void whatIsNotSavedIsNoStep();
    void whatIsSavedAtTimesIsAStepThen();
    void valueThatCannotBeKeptDoesNotChange();
    void valueThatIsNotKeptAfterItsChangeMarksTheDocument_data();
    void valueThatIsNotKeptAfterItsChangeMarksTheDocument();
    void valuesThatAreStoredDifferentlyDiffer_data();
    void valuesThatAreStoredDifferentlyDiffer();

    void equalColorsOfDifferentHuesDiffer();
    void changeDoesNotSaveTheFeature();
    void restoringRaisesTheSignalOfWhatChanges();
    void undoOfWhatCannotBeSavedIsRefused();
    void rollBackOfWhatCannotBeSavedSaysSo();
    void wholeChangeOfWhatCannotBeSavedIsNotMade();
    void manyFeaturesChangeInOneStep();
    void destroyedFeatureIsForgotten();
    void propertyBoundToTheSameIndexTakesTheWholeFeature();
    void namesFollowTheLabel();
    void whatSlotsDoOverAndOverIsTakenBack();
};

void tst_undo_values::initTestCase()
{
    ZAXGeoContainer::RegisterType(&ZAXProbePart::staticMetaObject);
    ZAXGeoContainer::RegisterType(&ZAXProbeSheet::staticMetaObject);
}

void tst_undo_values::init()
{
    document = std::make_unique<ZAXHostDocument>();
    const auto create = [this] {
        return qobject_cast<ZAXProbeSheet*>(document->GetContainer()->CreateInstance("ZAXProbeSheet", nullptr));
    };
    sheet = create();
    other = create();
    QVERIFY(Undo().Clear());
    Stack().setClean();
}

void tst_undo_values::cleanup()
{
    ZAXProbeData::failAt = "";
    document.reset();
}

void tst_undo_values::changeIsTakenBackAndDoneAgain_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, Change change) { QTest::newRow(name) << change; };
    row("text", [](ZAXProbeSheet& s) { s.note.SetValue(QLatin1String("new"), false); });
    row("silent", [](ZAXProbeSheet& s) { s.note.SetValue(QLatin1String("new"), true); });
    row("number", [](ZAXProbeSheet& s) { s.weight.SetValue(2.5, false); });
    row("not a number", [](ZAXProbeSheet& s) { s.weight.SetValue(std::numeric_limits<double>::quiet_NaN(), false); });
    row("color", [](ZAXProbeSheet& s) { s.color.SetValue(QColor(1, 2, 3, 4), false); });
    row("color of another model", [](ZAXProbeSheet& s) { s.color.SetValue(QColor::fromHsv(1, 2, 3, 4), false); });
    row("bytes", [](ZAXProbeSheet& s) { s.key.SetValue(QByteArray("\0k", 2), false); });
    row("flag", [](ZAXProbeSheet& s) { s.isOn.SetValue(true, false); });
    row("text that changes more than itself", [](ZAXProbeSheet& s) { s.title.SetValue(QLatin1String("new"), false); });
    row("number that changes another value", [](ZAXProbeSheet& s) { s.lead.SetValue(3, false); });
}

void tst_undo_values::changeIsTakenBackAndDoneAgain()
{
    QFETCH(Change, change);
    sheet->SetLabel(QLatin1String("Sheet"));
    other->data.link.SetPointedObject(sheet, false);
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    change(*sheet);
    QCOMPARE(Stack().count(), count + 1);
    const QByteArray after = document->Encode();
    QVERIFY(after != before);
    for (int i = 0; i < 2; ++i) {
        QVERIFY(Undo().Undo());
        QCOMPARE(document->Encode(), before);
        QVERIFY(Undo().Redo());
        QCOMPARE(document->Encode(), after);
    }
    QCOMPARE(Stack().count(), count + 1);
}

void tst_undo_values::changesOfOneTransactionAreOneStep_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, Change change) { QTest::newRow(name) << change; };
    row("one twice", [](ZAXProbeSheet& s) {
        s.note.SetValue(QLatin1String("a"), false);
        s.note.SetValue(QLatin1String("b"), false);
    });
    row("several", [](ZAXProbeSheet& s) {
        s.note.SetValue(QLatin1String("a"), false);
        s.weight.SetValue(1, false);
        s.isOn.SetValue(true, false);
        s.note.SetValue(QLatin1String("b"), false);
    });
    row("a value, then the label", [](ZAXProbeSheet& s) {
        s.note.SetValue(QLatin1String("a"), false);
        s.color.SetValue(QColor(Qt::red), false);
        s.SetLabel(QLatin1String("labelled"));
        s.note.SetValue(QLatin1String("b"), false);
    });
    row("the label, then a value", [](ZAXProbeSheet& s) {
        s.SetLabel(QLatin1String("labelled"));
        s.weight.SetValue(1, false);
    });
    row("a value, then an unbound one", [](ZAXProbeSheet& s) {
        s.weight.SetValue(1, false);
        s.SetText(QLatin1String("unbound"));
    });
    row("a value, then a list", [](ZAXProbeSheet& s) {
        s.weight.SetValue(1, false);
        s.links.Add(&s, false);
    });
    row("a value, then its place", [](ZAXProbeSheet& s) {
        s.weight.SetValue(1, false);
        s.MoveTo(qobject_cast<ZAXFeatContainer*>(s.GetContainer())->GetRoots().constLast(), 0);
    });
    row("a value, then gone", [](ZAXProbeSheet& s) {
        s.weight.SetValue(1, false);
        s.Remove();
    });
    row("changes within a change", [](ZAXProbeSheet& s) {
        const ZAXFeatPropertyChange change(s.note);
        s.weight.SetValue(1, false);
        s.note.SetValue(QLatin1String("a"), false);
    });
}

void tst_undo_values::changesOfOneTransactionAreOneStep()
{
    QFETCH(Change, change);
    const QByteArray before = document->Encode();
    ZAXHostTransaction transaction(Undo(), QLatin1String("Several"));
    change(*sheet);
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), 1);
    const QByteArray after = document->Encode();
    for (int i = 0; i < 2; ++i) {
        QVERIFY(Undo().Undo());
        QCOMPARE(document->Encode(), before);
        QVERIFY(Undo().Redo());
        QCOMPARE(document->Encode(), after);
    }
}

void tst_undo_values::changesAreRolledBack_data()
{
    changesOfOneTransactionAreOneStep_data();
}

void tst_undo_values::changesAreRolledBack()
{
    QFETCH(Change, change);
    const QByteArray before = document->Encode();
    ZAXHostTransaction transaction(Undo(), QLatin1String("Several"));
    change(*sheet);
    QVERIFY(transaction.Rollback());
    QCOMPARE(document->Encode(), before);
    QCOMPARE(Stack().count(), 0);
    QVERIFY(!document->IsModified());
}

void tst_undo_values::whatIsAsBeforeIsNoStep_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, Change change) { QTest::newRow(name) << change; };
    row("one", [](ZAXProbeSheet& s) {
        s.weight.SetValue(1, false);
        s.weight.SetValue(0, false);
    });
    row("color", [](ZAXProbeSheet& s) {
        s.color.SetValue(QColor(Qt::red), false);
        s.color.SetValue(QColor(), false);
    });
    row("streamed", [](ZAXProbeSheet& s) {
        s.frail.SetValue({2}, false);
        s.frail.SetValue({0}, false);
    });
    row("all that changed", [](ZAXProbeSheet& s) {
        s.weight.SetValue(1, false);
        s.isOn.SetValue(true, false);
        s.isOn.SetValue(false, false);
        s.weight.SetValue(0, false);
    });
    row("with the label", [](ZAXProbeSheet& s) {
        s.weight.SetValue(1, false);
        s.SetLabel(QLatin1String("labelled"));
        s.weight.SetValue(0, false);
        s.SetLabel(QString());
    });
    row("what is not saved", [](ZAXProbeSheet& s) { s.shown.SetValue(1, false); });
    row("what is not saved just now", [](ZAXProbeSheet& s) { s.remark.SetValue(QLatin1String("new"), false); });
    row("what is not saved, and what is as before", [](ZAXProbeSheet& s) {
        s.shown.SetValue(1, false);
        s.weight.SetValue(1, false);
        s.remark.SetValue(QLatin1String("new"), false);
        s.weight.SetValue(0, false);
    });
}

void tst_undo_values::whatIsAsBeforeIsNoStep()
{
    QFETCH(Change, change);
    ZAXHostTransaction transaction(Undo(), QLatin1String("There and back"));
    change(*sheet);
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), 0);
    QVERIFY(!document->IsModified());
}

void tst_undo_values::whatIsNotSavedIsNoStep()
{
    QSignalSpy changed(sheet, &ZAXProbeSheet::ShownChanged);
    // It stays so, whatever else has been a step.
    for (int i = 1; i < 4; ++i) {
        sheet->shown.SetValue(i, false);
        QCOMPARE(Stack().count(), i - 1);
        QCOMPARE(changed.size(), i);
        other->weight.SetValue(i, false);
        QCOMPARE(Stack().count(), i);
        Stack().setClean();
        sheet->shown.SetValue(-i, true);
        QVERIFY(!document->IsModified());
    }
    QVERIFY(Undo().Undo());
    QCOMPARE(other->GetWeight(), 2.0);
    QCOMPARE(sheet->GetShown(), -3.0);
}

void tst_undo_values::whatIsSavedAtTimesIsAStepThen()
{
    sheet->isOn.SetValue(true, false);
    for (int i = 0; i < 3; ++i) {
        sheet->remark.SetValue(QString::number(i), false);
        QCOMPARE(Stack().count(), 2 + i);
    }
    QVERIFY(Undo().Undo());
    QCOMPARE(sheet->GetRemark(), QLatin1String("1"));
    QVERIFY(Undo().Clear());
    sheet->isOn.SetValue(false, false);
    sheet->remark.SetValue(QLatin1String("off"), false);
    // The host takes it for saved until it is taken back.
    QVERIFY(Undo().Undo());
    QCOMPARE(Stack().index(), 1);
    sheet->remark.SetValue(QLatin1String("off again"), false);
    QCOMPARE(Stack().index(), 1);
}

void tst_undo_values::valueThatCannotBeKeptDoesNotChange()
{
    QVERIFY(Undo().Clear());
    ZAXProbeData::failAt = "keeping";
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, sheet->frail.SetValue({3}, false));
    ZAXProbeData::failAt = "";
    QCOMPARE(sheet->GetFrail().number, 0);
    QCOMPARE(Stack().count(), 0);
    QVERIFY(!document->IsModified());
    QVERIFY(!Undo().IsBusy());
    // The same within a transaction that has something to do already.
    ZAXHostTransaction transaction(Undo(), QLatin1String("Both"));
    other->weight.SetValue(1, false);
    ZAXProbeData::failAt = "keeping";
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, sheet->frail.SetValue({3}, false));
    ZAXProbeData::failAt = "";
    other->weight.SetValue(0, false);
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), 0);
    QVERIFY(!document->IsModified());
}

void tst_undo_values::valueThatIsNotKeptAfterItsChangeMarksTheDocument_data()
{
    QTest::addColumn<bool>("isWithOthers");
    QTest::newRow("alone") << false;
    QTest::newRow("with another value") << true;
}

void tst_undo_values::valueThatIsNotKeptAfterItsChangeMarksTheDocument()
{
    QFETCH(bool, isWithOthers);
    ZAXHostTransaction transaction(Undo(), QLatin1String("One or both"));
    sheet->frail.SetValue({13}, false);
    other->weight.SetValue(isWithOthers, false);
    QVERIFY(transaction.Commit());
    QVERIFY(document->IsModified());
    QCOMPARE(Stack().count(), int(isWithOthers));
    QVERIFY(Undo().Undo());
    QCOMPARE(other->GetWeight(), 0.0);
    QVERIFY(document->IsModified());
    QVERIFY(!Undo().IsBusy());
}

void tst_undo_values::valuesThatAreStoredDifferentlyDiffer_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, Change change) { QTest::newRow(name) << change; };
    row("null and empty text", [](ZAXProbeSheet& s) {
        s.note.SetValue(QLatin1String("a"), false);
        s.note.SetValue(QLatin1String(""), false);
    });
    row("null and empty bytes", [](ZAXProbeSheet& s) {
        s.key.SetValue("a", false);
        s.key.SetValue("", false);
    });
    row("zero and minus zero", [](ZAXProbeSheet& s) {
        s.weight.SetValue(1, false);
        s.weight.SetValue(-0.0, false);
    });
}

void tst_undo_values::valuesThatAreStoredDifferentlyDiffer()
{
    QFETCH(Change, change);
    const QByteArray before = document->Encode();
    ZAXHostTransaction transaction(Undo(), QLatin1String("Almost back"));
    change(*sheet);
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), 1);
    QVERIFY(document->Encode() != before);
}

void tst_undo_values::equalColorsOfDifferentHuesDiffer()
{
    const QColor full = QColor::fromHsvF(1, 1, 1);
    const QColor none = QColor::fromHsvF(0, 1, 1);
    QVERIFY(full == none);
    sheet->color.SetValue(full, false);
    const QByteArray before = document->Encode();
    ZAXHostTransaction transaction(Undo(), QLatin1String("Almost back"));
    sheet->color.SetValue(QColor(Qt::blue), false);
    sheet->color.SetValue(none, false);
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), 2);
    QVERIFY(document->Encode() != before);
}

void tst_undo_values::changeDoesNotSaveTheFeature()
{
    // Only the first one, which shows that the value is saved.
    sheet->note.SetValue(QLatin1String("first"), false);
    sheet->saves = 0;
    other->saves = 0;
    sheet->note.SetValue(QLatin1String("new"), false);
    other->note.SetValue(QLatin1String("new"), false);
    QCOMPARE(sheet->saves, 0);
    QCOMPARE(other->saves, 0);
    sheet->SetLabel(QLatin1String("new"));
    QCOMPARE(sheet->saves, 2);
}

void tst_undo_values::restoringRaisesTheSignalOfWhatChanges()
{
    sheet->note.SetValue(QLatin1String("new"), true);
    QSignalSpy noteChanged(sheet, &ZAXProbeSheet::NoteChanged);
    QSignalSpy weightChanged(sheet, &ZAXProbeSheet::WeightChanged);
    QVERIFY(Undo().Undo());
    QCOMPARE(noteChanged.size(), 1);
    QCOMPARE(noteChanged.constFirst().constFirst().toString(), QString());
    QVERIFY(Undo().Redo());
    QCOMPARE(noteChanged.size(), 2);
    QCOMPARE(noteChanged.constLast().constFirst().toString(), QLatin1String("new"));
    QCOMPARE(weightChanged.size(), 0);
}

void tst_undo_values::undoOfWhatCannotBeSavedIsRefused()
{
    sheet->note.SetValue(QLatin1String("new"), false);
    ZAXProbeData::failAt = "Save of a sheet";
    sheet->weight.SetValue(1, false);
    QCOMPARE(Stack().count(), 2);
    QCOMPARE(Undo().Undo().GetMessage(), QLatin1String("The probe fails at Save of a sheet."));
    ZAXProbeData::failAt = "";
    QVERIFY(!Undo().IsBusy());
    QCOMPARE(Stack().index(), 2);
    QCOMPARE(sheet->GetWeight(), 1.0);
    QCOMPARE(sheet->GetNote(), QLatin1String("new"));
    QVERIFY(Undo().Undo());
    QCOMPARE(sheet->GetWeight(), 0.0);
    QVERIFY(Undo().Undo());
    QCOMPARE(sheet->GetNote(), QString());
    ZAXProbeData::failAt = "Save of a sheet";
    QVERIFY(!Undo().Redo());
    ZAXProbeData::failAt = "";
    QCOMPARE(Stack().index(), 0);
    QCOMPARE(sheet->GetNote(), QString());
}

void tst_undo_values::rollBackOfWhatCannotBeSavedSaysSo()
{
    auto* const part = qobject_cast<ZAXProbePart*>(document->GetContainer()->CreateInstance("ZAXProbePart", nullptr));
    Stack().setClean();
    ZAXHostTransaction transaction(Undo(), QLatin1String("Try"));
    sheet->note.SetValue(QLatin1String("new"), false);
    part->SetText(QLatin1String("new"));
    ZAXProbeData::failAt = "Save of a sheet";
    QCOMPARE(transaction.Rollback().GetMessage(),
             QLatin1String("An object of the document does not take its former state."));
    ZAXProbeData::failAt = "";
    QCOMPARE(sheet->GetNote(), QLatin1String("new"));
    QCOMPARE(part->data.text.GetValue(), QString());
    QVERIFY(!Undo().IsBusy());
    QVERIFY(document->IsModified());
}

void tst_undo_values::wholeChangeOfWhatCannotBeSavedIsNotMade()
{
    ZAXHostTransaction transaction(Undo(), QLatin1String("Both"));
    sheet->note.SetValue(QLatin1String("new"), false);
    ZAXProbeData::failAt = "Save of a sheet";
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, sheet->SetLabel(QLatin1String("new")));
    ZAXProbeData::failAt = "";
    // Its values are what they were, not what undo was about to keep.
    QCOMPARE(sheet->GetNote(), QLatin1String("new"));
    QCOMPARE(sheet->GetLabel(), QLatin1String("Folder"));
    QVERIFY(transaction.Commit());
    QVERIFY(Undo().Undo());
    QCOMPARE(sheet->GetNote(), QString());
}

void tst_undo_values::manyFeaturesChangeInOneStep()
{
    QList<ZAXProbeSheet*> sheets;
    for (int i = 0; i < 30; ++i)
        sheets.append(qobject_cast<ZAXProbeSheet*>(document->GetContainer()->CreateInstance("ZAXProbeSheet", nullptr)));
    QVERIFY(Undo().Clear());
    const QByteArray before = document->Encode();
    ZAXHostTransaction transaction(Undo(), QLatin1String("All"));
    for (int round = 0; round < 2; ++round) {
        for (ZAXProbeSheet* each : sheets)
            each->weight.SetValue(round + 1, false);
    }
    sheets.at(3)->SetLabel(QLatin1String("whole"));
    delete sheets.at(20);
    sheets.at(29)->note.SetValue(QLatin1String("new"), false);
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), 1);
    const QByteArray after = document->Encode();
    QVERIFY(Undo().Undo());
    for (qsizetype i = 0; i < sheets.size(); ++i)
        QCOMPARE(i == 20 ? 0.0 : sheets.at(i)->GetWeight(), 0.0);
    QCOMPARE(sheets.at(29)->GetNote(), QString());
    QCOMPARE(sheets.at(3)->GetLabel(), QLatin1String("Folder"));
    QVERIFY(Undo().Redo());
    QCOMPARE(document->Encode(), after);
    QVERIFY(before != after);
}

void tst_undo_values::destroyedFeatureIsForgotten()
{
    sheet->note.SetValue(QLatin1String("new"), false);
    other->note.SetValue(QLatin1String("other"), false);
    delete sheet;
    QVERIFY(Undo().Undo());
    QCOMPARE(other->GetNote(), QString());
    QVERIFY(Undo().Undo());
    QVERIFY(Undo().Redo());
    QVERIFY(Undo().Redo());
    QCOMPARE(other->GetNote(), QLatin1String("other"));
}

void tst_undo_values::propertyBoundToTheSameIndexTakesTheWholeFeature()
{
    other->weight.SetValue(1, false);
    sheet->temporary.emplace(sheet, sheet->weight.GetPropertyIndex(), 7.0, true);
    sheet->saves = 0;
    // The earlier one is no longer what the index leads to.
    sheet->weight.SetValue(1, false);
    QCOMPARE(sheet->saves, 2);
    sheet->temporary.reset();
    QVERIFY(Undo().Undo());
    QCOMPARE(sheet->GetWeight(), 0.0);
    sheet->saves = 0;
    sheet->weight.SetValue(2, false);
    QCOMPARE(sheet->saves, 0);
}

void tst_undo_values::namesFollowTheLabel()
{
    sheet->SetLabel(QLatin1String("%1 and %2"));
    sheet->note.SetValue(QLatin1String("a"), false);
    QCOMPARE(Stack().undoText(), QLatin1String("Change %1 and %2"));
    other->SetLabel(QLatin1String("Other"));
    other->note.SetValue(QLatin1String("a"), false);
    QCOMPARE(Stack().undoText(), QLatin1String("Change Other"));
    other->SetLabel(QLatin1String("Renamed"));
    QCOMPARE(Stack().undoText(), QLatin1String("Change Renamed"));
    other->Remove();
    QCOMPARE(Stack().undoText(), QLatin1String("Remove Renamed"));
}

void tst_undo_values::whatSlotsDoOverAndOverIsTakenBack()
{
    QList<ZAXProbeSheet*> others;
    for (int i = 0; i < 4; ++i)
        others.append(qobject_cast<ZAXProbeSheet*>(document->GetContainer()->CreateInstance("ZAXProbeSheet", nullptr)));
    sheet->note.SetValue(QLatin1String("new"), true);
    const auto once = [](ZAXProbeSheet* sender, auto signal, const std::function<void()>& work) {
        connect(sender, signal, sender, work, Qt::SingleShotConnection);
    };
    once(sheet, &ZAXProbeSheet::NoteChanged, [&] {
        for (int i = 0; i < 3; ++i)
            others.at(i)->note.SetValue(QLatin1String("of a slot"), true);
        // When that is taken back, something goes that was among it, and the rest changes anew.
        once(others.at(2), &ZAXProbeSheet::NoteChanged, [&] {
            others.at(1)->note.SetValue(QLatin1String("again"), true);
            delete others.at(0);
            others.at(3)->note.SetValue(QLatin1String("too"), true);
            once(sheet, &ZAXProbeSheet::WeightChanged,
                 [&] { others.at(1)->note.SetValue(QLatin1String("once more"), true); });
            sheet->weight.SetValue(5, true);
        });
    });
    QVERIFY(Undo().Undo());
    for (int i = 1; i < 4; ++i)
        QCOMPARE(others.at(i)->GetNote(), QString());
    QCOMPARE(sheet->GetNote(), QString());
    QCOMPARE(sheet->GetWeight(), 0.0);
}

QTEST_GUILESS_MAIN(tst_undo_values)
#include "tst_undo_values.moc"
