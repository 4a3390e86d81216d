#include "ZAXFeatContainer.h"
#include "ZAXHostClipboard.h"
#include "ZAXHostDocument.h"
#include "ZAXHostDuplicator.h"
#include "ZAXHostTransaction.h"
#include "ZAXHostUndo.h"
#include "ZAXProbeModules.h"
#include "ZAXSysException.h"

#include <QAction>
#include <QBuffer>
#include <QGuiApplication>
#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

#include <stdexcept>
#include <utility>

// What a step holds and tells of, whatever slots and features do meanwhile, refuse or throw.

namespace {

/// A part that makes another one below itself before it is announced.
class ZAXProbeNest : public ZAXProbePart
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXProbeNest(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
    }
    Q_INVOKABLE explicit ZAXProbeNest(ZAXFeatContainer* container) : ZAXProbePart(container) {}

    void Initialize() override
    {
        ZAXProbePart::Initialize();
        auto* const egg = new ZAXProbePart(this);
        egg->Initialize();
        egg->SetText(QLatin1String("egg"));
    }
    void PostDuplicate(const ZAXFeatObject* source, const ZAXFeatObject* duplicated) override
    {
        ZAXProbePart::PostDuplicate(source, duplicated);
        auto* const egg = new ZAXProbePart(this);
        egg->Initialize();
        ZAXProbeData::Run("PostDuplicate of a nest");
    }
};

/// A part that takes something outside itself, and can refuse to be saved or to let it go.
class ZAXProbeTenant : public ZAXProbePart
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXProbeTenant(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
    }
    Q_INVOKABLE explicit ZAXProbeTenant(ZAXFeatContainer* container) : ZAXProbePart(container) {}
    Q_INVOKABLE explicit ZAXProbeTenant(ZAXFeatObject* parent) : ZAXProbePart(parent) {}

    void Save(ZAXGeoStream& stream) const override
    {
        ZAXProbeData::Run("Save of a tenant");
        ZAXProbePart::Save(stream);
    }
    void Load(ZAXGeoStream& stream) override
    {
        ZAXProbeData::Run("Load of a tenant");
        ZAXProbePart::Load(stream);
    }
    void InitializeNonStreamed() override
    {
        ZAXProbePart::InitializeNonStreamed();
        isMovedIn = true;
        ++moves;
    }
    void Cleanup() override
    {
        ZAXProbePart::Cleanup();
        ZAXProbeData::Run("Cleanup");
        if (refusesToLeave)
            throw std::runtime_error("stays");
        if (evicted)
            std::exchange(evicted, nullptr)->Remove();
        isMovedIn = false;
        ++moves;
    }
    void EndStateLoad() override
    {
        ZAXProbePart::EndStateLoad();
        // The one that comes next.
        if (data.text.GetValue() == u"alone" && GetParent()->GetChildren().size() > 1)
            GetParent()->GetChildren().at(1)->Remove();
    }
    QString GetLabel() const override
    {
        ZAXProbeData::Run("Label of a tenant");
        return ZAXProbePart::GetLabel();
    }

    bool isMovedIn = false;
    int moves = 0;
    bool refusesToLeave = false;
    ZAXFeatObject* evicted = nullptr;
};

/// What parents told of their children, as "part +" and "part -".
class Announcements : public QObject
{
public:
    void Follow(ZAXFeatObject* parent)
    {
        const QString name = parent->GetLabel();
        connect(parent, &ZAXFeatObject::ChildAdded, this, [this, name] { m_told.append(name + QLatin1String(" +")); });
        connect(parent, &ZAXFeatObject::ChildRemoved, this,
                [this, name] { m_told.append(name + QLatin1String(" -")); });
    }
    QString Take() { return std::exchange(m_told, {}).join(QLatin1String(", ")); }

private:
    QStringList m_told;
};

} // namespace

class tst_undo_steps : public QObject
{
    Q_OBJECT

private:
    ZAXProbePart* Create(const char* className, ZAXFeatObject* parent = nullptr)
    {
        return qobject_cast<ZAXProbePart*>(document->GetContainer()->CreateInstance(className, parent));
    }
    ZAXHostUndo& Undo() { return document->GetUndo(); }
    QUndoStack& Stack() { return *Undo().GetStack(); }

    std::unique_ptr<ZAXHostDocument> document;
    ZAXProbePart* part = nullptr;
    ZAXProbePart* other = nullptr;

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void silentChangeOfAPropertyIsOneStep();
    void reorderingIsOneStepWithoutSignalsOfTheParent();
    void removalClearsLinksAndUndoRestoresThem();
    void whatSlotsDoToANewFeatureIsPartOfItsStep();
    void childAnnouncedBeforeItsParent();
    void whatCameAndWentIsNoStep();
    void moveThereAndBackIsNoStep();
    void whatWasNeverAnnouncedIsNoStep();

    void wayAroundIsNoStep();
    void movesOfOneStepAreToldOfInPairs();
    void newAndMovedIsToldOfInPairs();
    void parentIsNotToldOfAGuestThatGoesOnAtOnce();
    void undoneCreationTakesLeave();
    void redoneRemovalTakesLeaveAgain();
    void rolledBackCreationTakesLeave();
    void refusedLeaveLeavesTheFeature();
    void refusedLeaveLeavesAllOfThem();
    void removedChildTakesLeaveOnce();

    void featureThatCannotBeSavedIsNotChanged();
    void featureThatCannotBeSavedAnyMoreIsChangedForGood();
    void rollBackSaysWhatItCouldNotTakeBack();
    void undoWithoutAContainerDoesNothing();

    void changeOfARemovedFeatureMayFreeIt();
    void undoLimitMayFreeWhatChanges();
    void actionOfTheStackIsRefusedDuringATransaction();
    void actionOfTheStackStopsAtWhatCannotBeTakenBack();
    void transactionWithoutADocumentIsRefused();
    void transactionThatEndsInASlotIsAStep();
    void failedUndoIsToldOfInPairs();
    void departureThatASlotSendsOnIsToldOfInPairs();
    void newcomerThatASlotRemovesIsToldToNobody();
    void failedUndoLeavesTheOrder();
    void undoTakesMovesOfSlotsBackExactly();
    void failedDuplicationLeavesTheDocumentClean();
    void labelThatFailsLosesNoStep();
    void objectMayRemoveAnotherWhenItIsLoaded();
    void openedDocumentIsClean();
    void pasteThatFailsLeavesNothing();
    void slotThatThrowsLeavesWhatWasPasted();
    void slotThatPointsAtWhatLeavesIsOverruled();

    void slotMayRemoveTheOwnerOfAList_data();
    void slotMayRemoveTheOwnerOfAList();
    void slotMayRemoveWhatChanges_data();
    void slotMayRemoveWhatChanges();

    void refusedStateLeavesEverythingAsItWas_data();
    void refusedStateLeavesEverythingAsItWas();
    void throwingSlotLeavesEverythingAsItWas_data();
    void throwingSlotLeavesEverythingAsItWas();
    void rollBackGoesOnOverThrowingSlots();
    void slotsThatAnswerEachOtherComeToAnEnd();
    void throwingRemovalCanBeTriedAgain();

    void stepsOutliveADestroyedFeature();
    void stepsOutliveADestroyedParent();
};

void tst_undo_steps::initTestCase()
{
    ZAXGeoContainer::RegisterType(&ZAXProbePart::staticMetaObject);
    ZAXGeoContainer::RegisterType(&ZAXProbeNest::staticMetaObject);
    ZAXGeoContainer::RegisterType(&ZAXProbeTenant::staticMetaObject);
}

void tst_undo_steps::init()
{
    document = std::make_unique<ZAXHostDocument>();
    part = Create("ZAXProbePart");
    other = Create("ZAXProbePart");
    QVERIFY(Undo().Clear());
    Stack().setClean();
}

void tst_undo_steps::cleanup()
{
    ZAXProbeData::failAt = "";
    document.reset();
}

void tst_undo_steps::silentChangeOfAPropertyIsOneStep()
{
    part->SetText(QLatin1String("silent"), true);
    QCOMPARE(Stack().count(), 1);
    QVERIFY(Undo().Undo());
    QCOMPARE(part->data.text.GetValue(), QString());
    QVERIFY(Undo().Redo());
    QCOMPARE(part->data.text.GetValue(), QLatin1String("silent"));
}

void tst_undo_steps::reorderingIsOneStepWithoutSignalsOfTheParent()
{
    QList<ZAXFeatObject*> children;
    for (int i = 0; i < 3; ++i)
        children.append(Create("ZAXProbePart", part));
    const int count = Stack().count();
    QSignalSpy added(part, &ZAXFeatObject::ChildAdded);
    QSignalSpy removed(part, &ZAXFeatObject::ChildRemoved);
    QVERIFY(children.at(0)->MoveTo(part, 2));
    QCOMPARE(Stack().count(), count + 1);
    const QList<ZAXFeatObject*> reordered{children.at(1), children.at(2), children.at(0)};
    QCOMPARE(part->GetChildren(), reordered);
    QVERIFY(Undo().Undo());
    QCOMPARE(part->GetChildren(), children);
    QVERIFY(Undo().Redo());
    QCOMPARE(part->GetChildren(), reordered);
    QCOMPARE(added.size() + removed.size(), 0);
    QVERIFY(children.at(0)->MoveTo(part, 2));
    QCOMPARE(Stack().count(), count + 1);
}

void tst_undo_steps::removalClearsLinksAndUndoRestoresThem()
{
    auto* const child = Create("ZAXProbePart", part);
    other->data.link.SetPointedObject(child, false);
    for (ZAXProbePart* linked : {child, part, child})
        other->links.Add(linked, false);
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    part->Remove();
    QCOMPARE(Stack().count(), count + 1);
    QVERIFY(!other->data.link.GetObject());
    QVERIFY(other->links.GetObjects().isEmpty());
    QVERIFY(Undo().Undo());
    QCOMPARE(other->data.link.GetObject(), child);
    QCOMPARE(other->links.GetObjects(), (QList<ZAXFeatObject*>{child, part, child}));
    QCOMPARE(document->Encode(), before);
}

void tst_undo_steps::whatSlotsDoToANewFeatureIsPartOfItsStep()
{
    const QByteArray before = document->Encode();
    connect(part, &ZAXFeatObject::ChildAdded, this, [this](ZAXFeatObject* child) {
        qobject_cast<ZAXProbePart*>(child)->SetText(QLatin1String("greeted"));
        other->links.Add(child, false);
    });
    Create("ZAXProbePart", part);
    disconnect(part, &ZAXFeatObject::ChildAdded, this, nullptr);
    QCOMPARE(Stack().count(), 1);
    const QByteArray after = document->Encode();
    QVERIFY(Undo().Undo());
    QCOMPARE(document->Encode(), before);
    QVERIFY(Undo().Redo());
    QCOMPARE(document->Encode(), after);
}

void tst_undo_steps::childAnnouncedBeforeItsParent()
{
    const QByteArray before = document->Encode();
    const QPointer<ZAXFeatObject> nest = Create("ZAXProbeNest");
    const QPointer<ZAXFeatObject> egg = nest->GetChildren().constFirst();
    QCOMPARE(Stack().count(), 1);
    const QByteArray after = document->Encode();
    for (int i = 0; i < 2; ++i) {
        QVERIFY(Undo().Undo());
        QCOMPARE(document->Encode(), before);
        QVERIFY(!document->GetContainer()->GetGeometryByRef(ZAXGeoGeometryRef(egg)));
        QVERIFY(Undo().Redo());
        QCOMPARE(document->Encode(), after);
        QCOMPARE(document->GetContainer()->GetGeometryByRef(ZAXGeoGeometryRef(egg)), egg.data());
    }
    QVERIFY(Undo().Undo());
    part->SetText(QLatin1String("new branch"));
    QVERIFY(!nest && !egg);
}

void tst_undo_steps::whatCameAndWentIsNoStep()
{
    QPointer<ZAXFeatObject> made;
    QPointer<ZAXFeatObject> below;
    ZAXHostTransaction transaction(Undo(), QLatin1String("Come and go"));
    made = Create("ZAXProbePart", part);
    below = Create("ZAXProbePart", made);
    made->SetLabel(QLatin1String("for a moment"));
    made->Remove();
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), 0);
    QVERIFY(!made && !below);
    QVERIFY(!document->IsModified());
}

void tst_undo_steps::moveThereAndBackIsNoStep()
{
    auto* const child = Create("ZAXProbePart", part);
    const int count = Stack().count();
    ZAXHostTransaction transaction(Undo(), QLatin1String("There and back"));
    QVERIFY(child->MoveTo(other, 0));
    QVERIFY(child->MoveTo(part, 0));
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), count);
}

void tst_undo_steps::wayAroundIsNoStep()
{
    auto* const third = Create("ZAXProbePart");
    auto* const child = Create("ZAXProbePart", part);
    const int count = Stack().count();
    ZAXHostTransaction transaction(Undo(), QLatin1String("Around"));
    for (ZAXFeatObject* parent : {other, third, part})
        QVERIFY(child->MoveTo(parent, 0));
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), count);
}

void tst_undo_steps::movesOfOneStepAreToldOfInPairs()
{
    auto* const third = Create("ZAXProbePart");
    auto* const child = Create("ZAXProbePart", part);
    auto* const companion = Create("ZAXProbePart", part);
    part->SetLabel(QLatin1String("part"));
    other->SetLabel(QLatin1String("other"));
    third->SetLabel(QLatin1String("third"));
    ZAXHostTransaction transaction(Undo(), QLatin1String("Two moves each"));
    QVERIFY(child->MoveTo(other, 0));
    QVERIFY(companion->MoveTo(other, 0));
    QVERIFY(child->MoveTo(third, 0));
    QVERIFY(companion->MoveTo(part, 0));
    QVERIFY(transaction.Commit());

    Announcements announcements;
    for (ZAXFeatObject* parent : {part, other, third})
        announcements.Follow(parent);
    QVERIFY(Undo().Undo());
    QCOMPARE(announcements.Take(), QLatin1String("part -, third -, part +, part +"));
    QVERIFY(Undo().Redo());
    QCOMPARE(announcements.Take(), QLatin1String("part -, part -, third +, part +"));
}

void tst_undo_steps::newAndMovedIsToldOfInPairs()
{
    part->SetLabel(QLatin1String("part"));
    other->SetLabel(QLatin1String("other"));
    ZAXHostTransaction transaction(Undo(), QLatin1String("Create and move"));
    auto* const child = Create("ZAXProbePart", part);
    Create("ZAXProbePart", part);
    QVERIFY(child->MoveTo(other, 0));
    QVERIFY(transaction.Commit());

    Announcements announcements;
    announcements.Follow(part);
    announcements.Follow(other);
    QVERIFY(Undo().Undo());
    QCOMPARE(announcements.Take(), QLatin1String("other -, part -"));
    QVERIFY(Undo().Redo());
    QCOMPARE(announcements.Take(), QLatin1String("other +, part +"));
}

void tst_undo_steps::parentIsNotToldOfAGuestThatGoesOnAtOnce()
{
    auto* const third = Create("ZAXProbePart");
    auto* const child = Create("ZAXProbePart", part);
    third->SetLabel(QLatin1String("third"));
    ZAXHostTransaction transaction(Undo(), QLatin1String("Through the third"));
    QVERIFY(child->MoveTo(third, 0));
    Create("ZAXProbePart", part);
    QVERIFY(child->MoveTo(other, 0));
    QVERIFY(transaction.Commit());
    Announcements announcements;
    announcements.Follow(third);
    QVERIFY(Undo().Undo());
    QVERIFY(Undo().Redo());
    QCOMPARE(announcements.Take(), QString());
    QCOMPARE(child->GetParent(), other);
}

void tst_undo_steps::undoneCreationTakesLeave()
{
    const auto* const tenant = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant"));
    QCOMPARE(tenant->moves, 1);
    QVERIFY(Undo().Undo());
    QVERIFY(!tenant->isMovedIn);
    QCOMPARE(tenant->moves, 2);
    QVERIFY(Undo().Redo());
    QVERIFY(tenant->isMovedIn);
    QCOMPARE(tenant->moves, 3);
}

void tst_undo_steps::redoneRemovalTakesLeaveAgain()
{
    const auto* const tenant = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant", part));
    part->Remove();
    QVERIFY(!tenant->isMovedIn);
    for (int moves = 2; moves < 6; moves += 2) {
        QCOMPARE(tenant->moves, moves);
        QVERIFY(Undo().Undo());
        QVERIFY(tenant->isMovedIn);
        QVERIFY(Undo().Redo());
        QVERIFY(!tenant->isMovedIn);
    }
}

void tst_undo_steps::rolledBackCreationTakesLeave()
{
    ZAXHostTransaction transaction(Undo(), QLatin1String("Not yet"));
    auto* const tenant = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant"));
    tenant->AddReference();
    QVERIFY(transaction.Rollback());
    QVERIFY(!tenant->isMovedIn);
    tenant->RemoveReference();
}

void tst_undo_steps::refusedLeaveLeavesTheFeature()
{
    const auto* const tenant = Create("ZAXProbeTenant", part);
    const QByteArray before = document->Encode();
    ZAXProbeData::failAt = "Cleanup";
    QCOMPARE(Undo().Undo().GetMessage(), QLatin1String("The probe fails at Cleanup."));
    ZAXProbeData::failAt = "";
    QCOMPARE(tenant->GetParent(), part);
    QCOMPARE(document->Encode(), before);
    QVERIFY(!Stack().canRedo());
    QVERIFY(Undo().Undo());
}

void tst_undo_steps::refusedLeaveLeavesAllOfThem()
{
    const auto* const first = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant", part));
    auto* const second = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant", part));
    second->refusesToLeave = true;
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, part->Remove());
    QVERIFY(first->isMovedIn && second->isMovedIn);
    QCOMPARE(part->GetChildren().size(), 2);
    second->refusesToLeave = false;
    part->Remove();
    QVERIFY(!first->isMovedIn && !second->isMovedIn);
}

void tst_undo_steps::removedChildTakesLeaveOnce()
{
    auto* const owner = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant", part));
    auto* const child = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant", owner));
    owner->evicted = child;
    part->Remove();
    QCOMPARE(child->moves, 2);
    QVERIFY(Undo().Undo());
    QVERIFY(child->isMovedIn && owner->isMovedIn);
}

void tst_undo_steps::changeOfARemovedFeatureMayFreeIt()
{
    const QPointer<ZAXProbePart> child = Create("ZAXProbePart", part);
    QVERIFY(Undo().Undo());
    child->SetLabel(QLatin1String("held on to"));
    QVERIFY(child);
    QCoreApplication::processEvents();
    QVERIFY(!child);
}

void tst_undo_steps::undoLimitMayFreeWhatChanges()
{
    Stack().setUndoLimit(1);
    const QPointer<ZAXProbePart> child = Create("ZAXProbePart", part);
    child->Remove();
    child->SetLabel(QLatin1String("held on to"));
    QVERIFY(child);
    QCoreApplication::processEvents();
    QVERIFY(!child);
}

void tst_undo_steps::actionOfTheStackIsRefusedDuringATransaction()
{
    part->SetText(QLatin1String("first"));
    const std::unique_ptr<QAction> undo(Stack().createUndoAction(nullptr));
    ZAXHostTransaction transaction(Undo(), QLatin1String("Open"));
    part->SetText(QLatin1String("second"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QLatin1String("still under way")));
    undo->trigger();
    QCOMPARE(part->data.text.GetValue(), QLatin1String("second"));
    QCOMPARE(Stack().index(), 1);
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), 2);
    undo->trigger();
    QCOMPARE(part->data.text.GetValue(), QLatin1String("first"));
}

void tst_undo_steps::actionOfTheStackStopsAtWhatCannotBeTakenBack()
{
    auto* const tenant = Create("ZAXProbeTenant");
    part->SetText(QLatin1String("first"));
    tenant->SetText(QLatin1String("second"));
    part->SetText(QLatin1String("third"));
    const int index = Stack().index();
    ZAXProbeData::failAt = "Load of a tenant";
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QLatin1String("The probe fails at Load of a tenant.")));
    Stack().setIndex(0);
    ZAXProbeData::failAt = "";
    QCOMPARE(Stack().index(), index - 1);
    QCOMPARE(part->data.text.GetValue(), QLatin1String("first"));
    QCOMPARE(tenant->data.text.GetValue(), QLatin1String("second"));
    Stack().setIndex(0);
    QCOMPARE(Stack().index(), 0);
    QCOMPARE(part->data.text.GetValue(), QString());
    Stack().setIndex(index);
    QCOMPARE(part->data.text.GetValue(), QLatin1String("third"));
}

void tst_undo_steps::transactionWithoutADocumentIsRefused()
{
    ZAXHostUndo undo(nullptr);
    ZAXHostTransaction transaction(undo, QLatin1String("Nothing"));
    QCOMPARE(transaction.GetResult().GetMessage(), QLatin1String("There is no document."));
    QCOMPARE(transaction.Commit().GetMessage(), QLatin1String("There is no document."));
    QCOMPARE(transaction.Rollback().GetMessage(), QLatin1String("There is no document."));
}

void tst_undo_steps::transactionThatEndsInASlotIsAStep()
{
    auto transaction = std::make_unique<ZAXHostTransaction>(Undo(), QLatin1String("Cut short"));
    connect(part, &ZAXFeatObject::LabelChanged, this, [&] { transaction.reset(); });
    part->SetText(QLatin1String("changed"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QLatin1String("not rolled back")));
    part->SetLabel(QLatin1String("changed"));
    QVERIFY(!Undo().IsBusy());
    QCOMPARE(Stack().undoText(), QLatin1String("Cut short"));
    QVERIFY(Undo().Undo());
    QCOMPARE(part->data.text.GetValue(), QString());
}

void tst_undo_steps::failedUndoIsToldOfInPairs()
{
    auto* const tenant = Create("ZAXProbeTenant");
    auto* const child = Create("ZAXProbePart", part);
    part->SetLabel(QLatin1String("part"));
    other->SetLabel(QLatin1String("other"));
    ZAXHostTransaction transaction(Undo(), QLatin1String("Move and change"));
    QVERIFY(child->MoveTo(other, 0));
    tenant->SetText(QLatin1String("changed"));
    QVERIFY(transaction.Commit());
    Announcements announcements;
    announcements.Follow(part);
    announcements.Follow(other);
    ZAXProbeData::failAt = "Load of a tenant";
    QVERIFY(!Undo().Undo());
    ZAXProbeData::failAt = "";
    QCOMPARE(child->GetParent(), other);
    QCOMPARE(announcements.Take(), QLatin1String("other -, other +"));
}

void tst_undo_steps::departureThatASlotSendsOnIsToldOfInPairs()
{
    auto* const third = Create("ZAXProbePart");
    auto* const child = Create("ZAXProbePart", part);
    for (const auto& [parent, name] : {std::pair(part, "part"), {other, "other"}, {third, "third"}})
        parent->SetLabel(QLatin1String(name));
    QVERIFY(child->MoveTo(other, 0));
    const QByteArray after = document->Encode();
    Announcements announcements;
    for (ZAXFeatObject* parent : {part, other, third})
        announcements.Follow(parent);
    connect(other, &ZAXFeatObject::ChildRemoved, this, [third](ZAXFeatObject* gone) { gone->MoveTo(third, 0); });
    QVERIFY(Undo().Undo());
    QCOMPARE(child->GetParent(), part);
    QCOMPARE(announcements.Take(), QLatin1String("other -, third +, third -, part +"));
    QVERIFY(Undo().Redo());
    QCOMPARE(document->Encode(), after);
}

void tst_undo_steps::newcomerThatASlotRemovesIsToldToNobody()
{
    auto* const nest = Create("ZAXProbePart", part);
    Create("ZAXProbePart", nest);
    Create("ZAXProbePart", nest);
    QPointer<ZAXFeatObject> copy;
    QStringList told;
    connect(part, &ZAXFeatObject::ChildAdded, this, [&](ZAXFeatObject* added) {
        auto* const second = added->GetChildren().at(1);
        connect(added, &ZAXFeatObject::ChildAdded, this, [&] { told.append(QLatin1String("+")); });
        connect(added, &ZAXFeatObject::ChildRemoved, this, [&] { told.append(QLatin1String("-")); });
        second->Remove();
    });
    QCOMPARE(ZAXHostDuplicator::Duplicate(nest)->GetChildren().size(), 1);
    QCOMPARE(told, QStringList(QLatin1String("+")));
}

void tst_undo_steps::failedUndoLeavesTheOrder()
{
    const QList<ZAXFeatObject*> children{Create("ZAXProbePart", part), Create("ZAXProbePart", part),
                                         Create("ZAXProbePart", part)};
    children.at(0)->Remove();
    Create("ZAXProbePart", other);
    Stack().setClean();
    const QByteArray before = document->Encode();
    connect(other, &ZAXFeatObject::ChildRemoved, this, [&] {
        children.at(1)->MoveTo(part, 1);
        throw std::runtime_error("slot");
    });
    QCOMPARE(Undo().Undo().GetMessage(), QLatin1String("slot"));
    QCOMPARE(document->Encode(), before);
    QVERIFY(!document->IsModified());
}

void tst_undo_steps::undoTakesMovesOfSlotsBackExactly()
{
    QList<ZAXFeatObject*> children;
    for (int i = 0; i < 4; ++i)
        children.append(Create("ZAXProbePart", part));
    const QByteArray before = document->Encode();
    ZAXHostTransaction transaction(Undo(), QLatin1String("Two go"));
    QVERIFY(children.at(0)->MoveTo(other, 0));
    QVERIFY(children.at(2)->MoveTo(other, 0));
    QVERIFY(transaction.Commit());
    const QByteArray after = document->Encode();
    // In the midst of the step, what stays changes its place among the siblings.
    connect(other, &ZAXFeatObject::ChildRemoved, this, [&] {
        children.at(3)->MoveTo(part, 0);
        document->GetContainer()->CreateInstance("ZAXProbePart", part)->MoveTo(part, 0);
    });
    QVERIFY(Undo().Undo());
    QCOMPARE(document->Encode(), before);
    QVERIFY(Undo().Redo());
    QCOMPARE(document->Encode(), after);
}

void tst_undo_steps::failedDuplicationLeavesTheDocumentClean()
{
    auto* const nest = Create("ZAXProbeNest");
    Stack().setClean();
    const QByteArray before = document->Encode();
    ZAXProbeData::failAt = "PostDuplicate of a nest";
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, ZAXHostDuplicator::Duplicate(nest));
    ZAXProbeData::failAt = "";
    QCOMPARE(document->Encode(), before);
    QVERIFY(!document->IsModified());
}

void tst_undo_steps::labelThatFailsLosesNoStep()
{
    auto* const tenant = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant"));
    const int count = Stack().count();
    ZAXProbeData::failAt = "Label of a tenant";
    tenant->SetText(QLatin1String("changed"));
    ZAXProbeData::failAt = "";
    QCOMPARE(Stack().count(), count + 1);
    QVERIFY(Undo().Undo());
    QCOMPARE(tenant->data.text.GetValue(), QString());
}

void tst_undo_steps::objectMayRemoveAnotherWhenItIsLoaded()
{
    Create("ZAXProbeTenant", part)->SetText(QLatin1String("alone"));
    Create("ZAXProbeTenant", part);
    Create("ZAXProbeTenant", part)->SetText(QLatin1String("last"));
    QByteArray bytes = document->Encode();
    QBuffer buffer(&bytes);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    ZAXHostDocument loaded;
    QVERIFY(loaded.Load(&buffer));
    const auto children = loaded.GetContainer()->GetRoots().constFirst()->GetChildren();
    QCOMPARE(children.size(), 2);
    QCOMPARE(qobject_cast<ZAXProbePart*>(children.at(1))->data.text.GetValue(), QLatin1String("last"));
}

void tst_undo_steps::openedDocumentIsClean()
{
    QByteArray bytes = document->Encode();
    part->SetText(QLatin1String("changed"));
    QVERIFY(Undo().Clear());
    QVERIFY(document->IsModified());
    QBuffer buffer(&bytes);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QVERIFY(document->Load(&buffer));
    QVERIFY(!document->IsModified());
}

void tst_undo_steps::pasteThatFailsLeavesNothing()
{
    // It has what it points at, outside, point back; then the next one fails.
    other->SetText(QLatin1String("back"));
    part->links.Add(other, false);
    auto* const tenant = Create("ZAXProbeTenant", part);
    const QByteArray copied = ZAXHostClipboard::Copy({part, tenant});
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    ZAXProbeData::failAt = "Load of a tenant";
    QCOMPARE(ZAXHostClipboard::Paste(copied, other, pasted, problems).GetMessage(),
             QLatin1String("The probe fails at Load of a tenant."));
    ZAXProbeData::failAt = "";
    QVERIFY(pasted.isEmpty());
    QCOMPARE(document->Encode(), before);
    QCOMPARE(Stack().count(), count);
}

void tst_undo_steps::slotThatThrowsLeavesWhatWasPasted()
{
    const QByteArray copied = ZAXHostClipboard::Copy({part});
    const int count = Stack().count();
    const auto fail = connect(other, &ZAXFeatObject::ChildAdded, this, [] { throw std::runtime_error("slot"); });
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, (void)ZAXHostClipboard::Paste(copied, other, pasted, problems));
    disconnect(fail);
    QCOMPARE(pasted, other->GetChildren());
    QCOMPARE(pasted.size(), 1);
    QCOMPARE(Stack().count(), count + 1);
    QVERIFY(Undo().Undo());
    QVERIFY(other->GetChildren().isEmpty());
}

void tst_undo_steps::slotThatPointsAtWhatLeavesIsOverruled()
{
    other->links.Add(part, false);
    connect(other, &ZAXProbePart::LinkRemoved, this, [this](ZAXFeatObject* gone) { other->links.Add(gone, false); });
    part->Remove();
    QVERIFY(other->links.GetObjects().isEmpty());
}

void tst_undo_steps::featureThatCannotBeSavedIsNotChanged()
{
    auto* const tenant = Create("ZAXProbeTenant");
    const int count = Stack().count();
    ZAXProbeData::failAt = "Save of a tenant";
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, tenant->SetText(QLatin1String("changed")));
    ZAXProbeData::failAt = "";
    QCOMPARE(tenant->data.text.GetValue(), QString());
    QVERIFY(!Undo().IsBusy());
    QCOMPARE(Stack().count(), count);
    tenant->SetText(QLatin1String("changed"));
    QCOMPARE(Stack().count(), count + 1);
    QVERIFY(Undo().Undo());
    QCOMPARE(tenant->data.text.GetValue(), QString());
}

void tst_undo_steps::featureThatCannotBeSavedAnyMoreIsChangedForGood()
{
    auto* const tenant = Create("ZAXProbeTenant");
    Stack().setClean();
    const int count = Stack().count();
    ZAXHostTransaction transaction(Undo(), QLatin1String("Both"));
    tenant->SetText(QLatin1String("changed"));
    part->SetText(QLatin1String("changed"));
    ZAXProbeData::failAt = "Save of a tenant";
    QVERIFY(transaction.Commit());
    ZAXProbeData::failAt = "";
    QVERIFY(!Undo().IsBusy());
    QCOMPARE(Stack().count(), count + 1);
    QVERIFY(document->IsModified());
    QVERIFY(Undo().Undo());
    QCOMPARE(part->data.text.GetValue(), QString());
    QCOMPARE(tenant->data.text.GetValue(), QLatin1String("changed"));
    QVERIFY(document->IsModified());

    // The end of a change, not of a transaction.
    const auto fail =
        connect(tenant, &ZAXProbePart::LinkAdded, this, [] { ZAXProbeData::failAt = "Save of a tenant"; });
    {
        const ZAXFeatPropertyChange change(tenant->data.text);
        tenant->links.Add(part, false);
    }
    disconnect(fail);
    ZAXProbeData::failAt = "";
    QVERIFY(!Undo().IsBusy());
    QCOMPARE(tenant->links.GetObjects(), QList<ZAXFeatObject*>{part});
}

void tst_undo_steps::rollBackSaysWhatItCouldNotTakeBack()
{
    auto* const tenant = Create("ZAXProbeTenant");
    Stack().setClean();
    const int count = Stack().count();
    ZAXHostTransaction transaction(Undo(), QLatin1String("Try"));
    tenant->SetText(QLatin1String("changed"));
    part->SetText(QLatin1String("changed"));
    Create("ZAXProbePart", part);
    ZAXProbeData::failAt = "Load of a tenant";
    QCOMPARE(transaction.Rollback().GetMessage(),
             QLatin1String("An object of the document does not take its former state."));
    ZAXProbeData::failAt = "";
    QCOMPARE(tenant->data.text.GetValue(), QLatin1String("changed"));
    QCOMPARE(part->data.text.GetValue(), QString());
    QVERIFY(part->GetChildren().isEmpty());
    QVERIFY(!Undo().IsBusy());
    QVERIFY(document->IsModified());
    QCOMPARE(Stack().count(), count);
}

void tst_undo_steps::undoWithoutAContainerDoesNothing()
{
    ZAXHostUndo undo(nullptr);
    QVERIFY(!undo.IsBusy());
    QVERIFY(undo.Undo());
    QVERIFY(undo.Redo());
    QVERIFY(undo.Clear());
    undo.SetContainer(document->GetContainer());
    undo.SetContainer(nullptr);
    part->SetText(QLatin1String("changed"));
    QCOMPARE(undo.GetStack()->count(), 0);
}

void tst_undo_steps::slotMayRemoveTheOwnerOfAList_data()
{
    QTest::addColumn<bool>("hasUndo");
    QTest::newRow("with undo") << true;
    QTest::newRow("without undo") << false;
}

void tst_undo_steps::slotMayRemoveTheOwnerOfAList()
{
    QFETCH(bool, hasUndo);
    if (!hasUndo)
        Undo().SetContainer(nullptr);
    const QPointer<ZAXProbePart> owner = Create("ZAXProbePart", part);
    const QPointer<ZAXProbePart> listed = Create("ZAXProbePart", owner);
    owner->links.Add(listed, false);
    connect(owner, &ZAXProbePart::LinkRemoved, this, [&] { owner->Remove(); });
    listed->Remove();
    QVERIFY(part->GetChildren().isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(bool(owner), hasUndo);
    QCOMPARE(bool(listed), hasUndo);
}

void tst_undo_steps::slotMayRemoveWhatChanges_data()
{
    slotMayRemoveTheOwnerOfAList_data();
}

void tst_undo_steps::slotMayRemoveWhatChanges()
{
    QFETCH(bool, hasUndo);
    if (!hasUndo)
        Undo().SetContainer(nullptr);
    const QPointer<ZAXProbePart> child = Create("ZAXProbePart", part);
    connect(child, &ZAXFeatObject::LabelChanged, this, [&] { child->Remove(); });
    child->SetLabel(QLatin1String("doomed"));
    // The change is still at work with it when the slot returns.
    QVERIFY(child);
    QVERIFY(part->GetChildren().isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(bool(child), hasUndo);
}

void tst_undo_steps::whatWasNeverAnnouncedIsNoStep()
{
    const QPointer<ZAXFeatObject> unborn = new ZAXProbePart(part);
    unborn->SetLabel(QLatin1String("unborn"));
    QVERIFY(unborn->MoveTo(other, 0));
    unborn->Remove();
    QVERIFY(!unborn);
    QCOMPARE(Stack().count(), 0);
}

void tst_undo_steps::refusedStateLeavesEverythingAsItWas_data()
{
    QTest::addColumn<QByteArray>("failAt");
    QTest::newRow("Load") << QByteArray("Load");
    QTest::newRow("EndStateLoad") << QByteArray("EndStateLoad");
}

void tst_undo_steps::refusedStateLeavesEverythingAsItWas()
{
    QFETCH(QByteArray, failAt);
    ZAXHostTransaction transaction(Undo(), QLatin1String("Much"));
    auto* const child = Create("ZAXProbePart", part);
    other->SetText(QLatin1String("changed"));
    other->data.link.SetPointedObject(child, false);
    QVERIFY(transaction.Commit());
    Stack().setClean();
    part->SetLabel(QLatin1String("more"));
    QVERIFY(Undo().Undo());
    const QByteArray before = document->Encode();

    ZAXProbeData::failAt = failAt.constData();
    // The states of this step are taken back as well as they can be.
    QCOMPARE(Undo().Undo().GetMessage(), QStringLiteral("The probe fails at %1.").arg(QLatin1String(failAt)));
    ZAXProbeData::failAt = "";
    QCOMPARE(document->Encode(), before);
    QCOMPARE(Stack().index(), 1);
    QVERIFY(Stack().isClean() && Stack().canRedo());
    QVERIFY(!Undo().IsBusy());
    QVERIFY(Undo().Undo());
    QVERIFY(Undo().Redo());
    QCOMPARE(document->Encode(), before);
}

void tst_undo_steps::throwingSlotLeavesEverythingAsItWas_data()
{
    QTest::addColumn<QByteArray>("signal");
    for (const char* signal : {"label", "child removed", "child added"})
        QTest::newRow(signal) << QByteArray(signal);
}

void tst_undo_steps::throwingSlotLeavesEverythingAsItWas()
{
    QFETCH(QByteArray, signal);
    auto* const leaving = Create("ZAXProbePart", part);
    ZAXHostTransaction transaction(Undo(), QLatin1String("Much"));
    Create("ZAXProbePart", part)->SetText(QLatin1String("new"));
    other->SetText(QLatin1String("changed"));
    other->SetLabel(QLatin1String("changed"));
    leaving->Remove();
    Create("ZAXProbePart", other);
    QVERIFY(transaction.Commit());
    Stack().setClean();
    const QByteArray before = document->Encode();

    QObject context;
    const auto fail = [] { throw std::runtime_error("slot"); };
    if (signal == "label")
        connect(other, &ZAXFeatObject::LabelChanged, &context, fail);
    else if (signal == "child removed")
        connect(part, &ZAXFeatObject::ChildRemoved, &context, fail);
    else
        connect(part, &ZAXFeatObject::ChildAdded, &context, fail);
    QCOMPARE(Undo().Undo().GetMessage(), QLatin1String("slot"));
    QCOMPARE(document->Encode(), before);
    QVERIFY(Stack().isClean());
    QVERIFY(!Undo().IsBusy());
    part->disconnect(&context);
    other->disconnect(&context);
    QVERIFY(Undo().Undo());
    QVERIFY(Undo().Redo());
    QCOMPARE(document->Encode(), before);
}

void tst_undo_steps::rollBackGoesOnOverThrowingSlots()
{
    auto* const child = Create("ZAXProbePart", part);
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    const auto fail = [] { throw std::runtime_error("slot"); };
    connect(other, &ZAXFeatObject::LabelChanged, this, fail);
    connect(part, &ZAXFeatObject::ChildAdded, this, fail);
    const auto change = [&] {
        ZAXHostTransaction transaction(Undo(), QLatin1String("Fails"));
        child->Remove();
        Create("ZAXProbePart", other);
        other->SetText(QLatin1String("changed"));
        other->SetLabel(QLatin1String("changed"));
        return transaction.Commit();
    };
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, (void)change());
    QCOMPARE(document->Encode(), before);
    QCOMPARE(Stack().count(), count);
    QVERIFY(!Undo().IsBusy());
}

void tst_undo_steps::slotsThatAnswerEachOtherComeToAnEnd()
{
    part->SetLabel(QLatin1String("new"));
    const QByteArray after = document->Encode();
    connect(part, &ZAXFeatObject::LabelChanged, this, [this] { other->SetLabel(other->GetLabel() + u'x'); });
    connect(other, &ZAXFeatObject::LabelChanged, this, [this] { part->SetVisibility(!part->IsVisible()); });
    connect(part, &ZAXFeatObject::VisibilityChanged, this,
            [this] { other->SetText(other->data.text.GetValue() + u'z'); });
    QVERIFY(Undo().Undo());
    QCOMPARE(other->data.text.GetValue(), QString());
    QVERIFY(part->IsVisible());
    QVERIFY(Undo().Redo());
    QCOMPARE(document->Encode(), after);
}

void tst_undo_steps::throwingRemovalCanBeTriedAgain()
{
    other->links.Add(part, false);
    const auto connection = connect(other, &ZAXProbePart::LinkRemoved, this, [] { throw std::runtime_error("slot"); });
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, part->Remove());
    disconnect(connection);
    QVERIFY(!Undo().IsBusy());
    part->Remove();
    QCOMPARE(document->GetContainer()->GetRoots(), QList<ZAXFeatObject*>{other});
    while (Stack().canUndo())
        QVERIFY(Undo().Undo());
    QCOMPARE(document->GetContainer()->GetRoots(), (QList<ZAXFeatObject*>{part, other}));
}

void tst_undo_steps::stepsOutliveADestroyedFeature()
{
    auto* const child = Create("ZAXProbePart", part);
    child->SetText(QLatin1String("doomed"));
    other->data.link.SetPointedObject(child, false);
    other->SetText(QLatin1String("after"));
    Stack().setClean();
    delete child;
    QVERIFY(document->IsModified());
    QVERIFY(!other->data.link.GetObject());
    while (Stack().canUndo())
        QVERIFY(Undo().Undo());
    QCOMPARE(other->data.text.GetValue(), QString());
    while (Stack().canRedo())
        QVERIFY(Undo().Redo());
    QCOMPARE(other->data.text.GetValue(), QLatin1String("after"));
    QVERIFY(!other->data.link.GetObject());
    QVERIFY(part->GetChildren().isEmpty());
    QVERIFY(document->IsModified());
}

void tst_undo_steps::stepsOutliveADestroyedParent()
{
    auto* const child = Create("ZAXProbePart", part);
    auto* const moved = Create("ZAXProbePart", part);
    const QPointer<ZAXFeatObject> removed = child;
    child->Remove();
    QVERIFY(moved->MoveTo(other, 0));
    delete part;
    while (Stack().canUndo())
        QVERIFY(Undo().Undo());
    // There is no place any more for what stood below it.
    QCOMPARE(document->GetContainer()->GetRoots(), QList<ZAXFeatObject*>{other});
    while (Stack().canRedo())
        QVERIFY(Undo().Redo());
    QVERIFY(Undo().Clear());
    QVERIFY(!removed);
}

// Actions need a QGuiApplication.
QTEST_MAIN(tst_undo_steps)
#include "tst_undo_steps.moc"
