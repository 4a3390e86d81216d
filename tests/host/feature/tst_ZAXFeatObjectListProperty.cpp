#include "ZAXFeatObjectListProperty.h"

#include "ZAXFeatObjectPrivate.h"
#include "ZAXProbeFeatures.h"
#include "ZAXProbeJournal.h"

#include <QSignalSpy>
#include <QTest>

using Parts = QList<ZAXProbePart*>;
using List = ZAXFeatObjectListProperty<ZAXProbePart>;

/// A feature with list properties of every kind of signal. What it raises goes into the journal.
class Basket : public ZAXFeatObject
{
    Q_OBJECT
    Q_CLASSINFO("inputProps", "items")
    Q_PROPERTY(QList<ZAXProbePart*> items READ GetItems NOTIFY ItemsChanged)
    Q_PROPERTY(QList<ZAXProbePart*> mute READ GetItems)

public:
    explicit Basket(ZAXFeatContainer* container) : ZAXFeatObject(container, nullptr)
    {
        connect(this, &Basket::ItemsChanged, this,
                [](const Parts& parts) { ZAXProbeJournal::Note(u"notified of "_qs + NamesOf(parts)); });
        connect(this, &Basket::Added, this, [this](ZAXProbePart* part) { Note("added", part); });
        connect(this, &Basket::Removed, this, [this](ZAXProbePart* part) { Note("removed", part); });
    }

    static int IndexOf(const char* property) { return staticMetaObject.indexOfProperty(property); }
    static QString NamesOf(const Parts& parts)
    {
        QStringList names;
        for (const ZAXProbePart* part : parts)
            names.append(part ? part->GetName() : QStringLiteral("null"));
        return u'[' + names.join(u' ') + u']';
    }

    Parts GetItems() const { return items.GetObjects(); }
    void NoSignal(ZAXProbePart*) {}

    List items{this, IndexOf("items"), &Basket::Added, &Basket::Removed};

signals:
    void ItemsChanged(const QList<ZAXProbePart*>& items);
    void Added(ZAXProbePart* part);
    void Removed(ZAXProbePart* part);
    void AddedConst(const ZAXProbePart* part);
    void RemovedConst(const ZAXProbePart* part);
    void AddedBare();
    void RemovedBare();
    void AddedPair(ZAXProbePart* part, int more);
    void RemovedPair(ZAXProbePart* part, int more);

private:
    void Note(const char* what, const ZAXProbePart* part) const
    {
        ZAXProbeJournal::Note(
            QStringLiteral("%1 %2 while %3")
                .arg(QString::fromUtf8(what), part ? part->GetName() : QStringLiteral("null"), NamesOf(GetItems())));
    }
};

/// Has signals that a plain basket has not.
class LargeBasket : public Basket
{
    Q_OBJECT

public:
    using Basket::Basket;

signals:
    void AddedLate(ZAXProbePart* part);
    void RemovedLate(ZAXProbePart* part);
};

class tst_ZAXFeatObjectListProperty : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void isEmptyAtFirst();
    void knowsItsFeatureAndItsIndex();
    void itemsKnowTheirList();
    void itemsTakeTheListsInputFlag();
    void noSignalIsRefused_data();
    void noSignalIsRefused();

    void addNotifiesThenRaisesAdded();
    void silentAddRaisesAdded();
    void addIsOneChange();
    void addTakesNull();
    void addTakesAnObjectTwice();
    void addOfAnotherDocumentLeavesTheListAsItWas();

    void removeItemRaisesRemovedThenNotifies();
    void silentRemoveItemRaisesRemoved();
    void removeItemIsOneChange();
    void removeItemTakesTheItemItIsGiven();
    void removeItemOfANullItemRaisesRemovedWithNull();
    void foreignItemIsRefused();
    void nullItemIsRefused();

    void clearRaisesRemovedForEachAndNotifiesOnce();
    void silentClearRaisesRemoved();
    void clearIsOneChange();
    void clearOfAnEmptyListDoesNothing();

    void propertyWithoutNotifySignalRaisesAddedAndRemoved();
    void unboundListRaisesAddedAndRemoved();
    void constParameterIsServed();
    void signalsWithoutParameterAreRaised();
    void addedSignalOfTwoParametersIsRefused();
    void removedSignalOfTwoParametersIsRefused();
    void addedSignalOfAnotherClassIsRefused();
    void removedSignalOfAnotherClassIsRefused();

    void slotThatThrowsInAddLeavesTheChangeClosed();
    void slotThatThrowsInRemoveItemLeavesTheChangeClosed();
    void slotThatThrowsInClearLeavesTheRest();
    void slotMayRemoveTheObjectThatLeft();
    void slotMayDeleteTheObjectThatLeft();
    void slotMayAddBehindARemoval();
    void objectThatLeftHasNoDependentAnyMore();

    void removedObjectLeavesTheList();
    void removedObjectLeavesTheListAsOftenAsItIsInIt();
    void deletedObjectLeavesANullItem();
    void destroyedListLeavesNoTrace();

    void writesCountAndReferences();
    void writesNullItemsAsInvalidReferences();
    void readsWhatItWrote();
    void readingReplacesTheListWithNotification();
    void readingMapsTheReferences();
    void referenceMappedToNothingGivesANullItem();
    void invalidReferenceGivesANullItem();
    void referenceToAnotherClassIsRefused();
    void referenceToNothingIsRefused();
    void referenceWithoutAContainerIsRefused();
    void readingPastTheEndKeepsWhatWasRead();
    void damagedCountIsReadToTheEndOnly_data();
    void damagedCountIsReadToTheEndOnly();

private:
    QStringList Journal() { return m_journal->Take(); }
    /// Parts by their names, each newly made.
    Parts Make(const QStringList& names);
    void Fill(const QStringList& names);

    std::unique_ptr<ZAXProbeJournal> m_journal;
    std::unique_ptr<ZAXFeatContainer> m_container;
    Basket* m_basket = nullptr;
};

void tst_ZAXFeatObjectListProperty::init()
{
    m_container = std::make_unique<ZAXFeatContainer>();
    m_basket = new Basket(m_container.get());
    m_basket->Initialize();
    m_journal = std::make_unique<ZAXProbeJournal>();
}

void tst_ZAXFeatObjectListProperty::cleanup()
{
    m_journal.reset();
    m_container.reset();
}

Parts tst_ZAXFeatObjectListProperty::Make(const QStringList& names)
{
    Parts parts;
    for (const QString& name : names)
        parts.append(AddPart(*m_container, qPrintable(name)));
    Journal();
    return parts;
}

void tst_ZAXFeatObjectListProperty::Fill(const QStringList& names)
{
    for (ZAXProbePart* part : Make(names))
        m_basket->items.Add(part, false);
    Journal();
}

void tst_ZAXFeatObjectListProperty::isEmptyAtFirst()
{
    QCOMPARE(m_basket->items.GetObjects(), Parts());
    QVERIFY(m_basket->items.GetItems().isEmpty());
}

void tst_ZAXFeatObjectListProperty::knowsItsFeatureAndItsIndex()
{
    QCOMPARE(m_basket->items.GetFeature(), m_basket);
    QCOMPARE(m_basket->items.GetPropertyIndex(), Basket::IndexOf("items"));
    QVERIFY(m_basket->items.IsInputProperty());
}

void tst_ZAXFeatObjectListProperty::itemsKnowTheirList()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    const auto items = m_basket->items.GetItems();
    QCOMPARE(items.size(), 2);
    QCOMPARE(items.at(0)->GetOwningList(), &m_basket->items);
    QCOMPARE(items.at(0)->GetFeature(), m_basket);
    QCOMPARE(items.at(0)->GetPropertyIndex(), -1);
    QCOMPARE(items.at(1)->GetObject()->GetName(), QStringLiteral("B"));
}

void tst_ZAXFeatObjectListProperty::itemsTakeTheListsInputFlag()
{
    List output(m_basket, Basket::IndexOf("mute"), &Basket::Added, &Basket::Removed);
    output.Add(nullptr, true);
    m_basket->items.Add(nullptr, true);
    QVERIFY(!output.GetItems().constFirst()->IsInputProperty());
    QVERIFY(m_basket->items.GetItems().constFirst()->IsInputProperty());
}

void tst_ZAXFeatObjectListProperty::noSignalIsRefused_data()
{
    QTest::addColumn<bool>("isAddedASignal");
    QTest::addColumn<bool>("isRemovedASignal");
    QTest::newRow("added is none") << false << true;
    QTest::newRow("removed is none") << true << false;
    QTest::newRow("both are none") << false << false;
}

void tst_ZAXFeatObjectListProperty::noSignalIsRefused()
{
    QFETCH(bool, isAddedASignal);
    QFETCH(bool, isRemovedASignal);
    const auto added = isAddedASignal ? &Basket::Added : &Basket::NoSignal;
    const auto removed = isRemovedASignal ? &Basket::Removed : &Basket::NoSignal;
    QCOMPARE(MessageOf([&] { const List list(m_basket, Basket::IndexOf("items"), added, removed); }),
             QStringLiteral("Invalid added signal index."));
}

void tst_ZAXFeatObjectListProperty::addNotifiesThenRaisesAdded()
{
    const Parts parts = Make({QStringLiteral("A"), QStringLiteral("B")});
    m_basket->items.Add(parts.at(0), false);
    QCOMPARE(Journal(), Entries("notified of [A] \n added A while [A]"));
    m_basket->items.Add(parts.at(1), false);
    QCOMPARE(Journal(), Entries("notified of [A B] \n added B while [A B]"));
    QCOMPARE(m_basket->items.GetObjects(), parts);
}

void tst_ZAXFeatObjectListProperty::silentAddRaisesAdded()
{
    m_basket->items.Add(Make({QStringLiteral("A")}).constFirst(), true);
    QCOMPARE(Journal(), Entries("added A while [A]"));
}

void tst_ZAXFeatObjectListProperty::addIsOneChange()
{
    const Parts parts = Make({QStringLiteral("A")});
    const ZAXProbeObserver observer(*m_container);
    m_basket->items.Add(parts.constFirst(), false);
    QCOMPARE(Journal(), Entries("about to change Basket \n changed Basket \n notified of [A] \n added A while [A]"));
}

void tst_ZAXFeatObjectListProperty::addTakesNull()
{
    m_basket->items.Add(nullptr, false);
    QCOMPARE(m_basket->items.GetObjects(), Parts{nullptr});
    QCOMPARE(Journal(), Entries("notified of [null] \n added null while [null]"));
}

void tst_ZAXFeatObjectListProperty::addTakesAnObjectTwice()
{
    const Parts parts = Make({QStringLiteral("A")});
    m_basket->items.Add(parts.constFirst(), false);
    m_basket->items.Add(parts.constFirst(), false);
    QCOMPARE(m_basket->items.GetObjects(), parts + parts);
}

void tst_ZAXFeatObjectListProperty::addOfAnotherDocumentLeavesTheListAsItWas()
{
    Fill({QStringLiteral("A")});
    ZAXFeatContainer other;
    ZAXProbePart* const stranger = AddPart(other, "stranger");
    Journal();
    QCOMPARE(MessageOf([&] { m_basket->items.Add(stranger, false); }),
             QStringLiteral("The object belongs to another document."));
    QCOMPARE(Basket::NamesOf(m_basket->GetItems()), QStringLiteral("[A]"));
    QCOMPARE(Journal(), QStringList());
    QCOMPARE(ZAXFeatObjectPrivate::Get(*m_basket).openChanges, 0);
    QCOMPARE(stranger->GetAllDependents(), QList<ZAXFeatObject*>());
}

void tst_ZAXFeatObjectListProperty::removeItemRaisesRemovedThenNotifies()
{
    Fill({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    m_basket->items.RemoveItem(m_basket->items.GetItems().at(1), false);
    QCOMPARE(Journal(), Entries("removed B while [A C] \n notified of [A C]"));
}

void tst_ZAXFeatObjectListProperty::silentRemoveItemRaisesRemoved()
{
    Fill({QStringLiteral("A")});
    m_basket->items.RemoveItem(m_basket->items.GetItems().constFirst(), true);
    QCOMPARE(Journal(), Entries("removed A while []"));
}

void tst_ZAXFeatObjectListProperty::removeItemIsOneChange()
{
    Fill({QStringLiteral("A")});
    const ZAXProbeObserver observer(*m_container);
    m_basket->items.RemoveItem(m_basket->items.GetItems().constFirst(), false);
    QCOMPARE(Journal(), Entries("about to change Basket \n removed A while [] \n changed Basket \n notified of []"));
}

void tst_ZAXFeatObjectListProperty::removeItemTakesTheItemItIsGiven()
{
    const Parts parts = Make({QStringLiteral("A"), QStringLiteral("B")});
    for (ZAXProbePart* part : {parts.at(0), parts.at(1), parts.at(0)})
        m_basket->items.Add(part, true);
    const auto items = m_basket->items.GetItems();
    m_basket->items.RemoveItem(items.at(2), true);
    QCOMPARE(m_basket->items.GetItems(), items.first(2));
}

void tst_ZAXFeatObjectListProperty::removeItemOfANullItemRaisesRemovedWithNull()
{
    m_basket->items.Add(nullptr, true);
    Journal();
    m_basket->items.RemoveItem(m_basket->items.GetItems().constFirst(), true);
    QCOMPARE(Journal(), Entries("removed null while []"));
}

void tst_ZAXFeatObjectListProperty::foreignItemIsRefused()
{
    Fill({QStringLiteral("A")});
    const ZAXProbeObserver observer(*m_container);
    List other(m_basket, -1, &Basket::Added, &Basket::Removed);
    other.Add(m_basket->GetItems().constFirst(), true);
    Journal();
    QCOMPARE(MessageOf([&] { m_basket->items.RemoveItem(other.GetItems().constFirst(), false); }),
             QStringLiteral("Cannot remove an item that is not contained in the list."));
    QCOMPARE(MessageOf([&] { m_basket->items.RemoveItem(&m_basket->GetItems().constFirst()->partner, false); }),
             QStringLiteral("Cannot remove an item that is not contained in the list."));
    QCOMPARE(Journal(), QStringList());
    QCOMPARE(Basket::NamesOf(m_basket->GetItems()), QStringLiteral("[A]"));
    QCOMPARE(Basket::NamesOf(other.GetObjects()), QStringLiteral("[A]"));
}

void tst_ZAXFeatObjectListProperty::nullItemIsRefused()
{
    Fill({QStringLiteral("A")});
    QCOMPARE(MessageOf([&] { m_basket->items.RemoveItem(nullptr, false); }),
             QStringLiteral("Cannot remove an item that is not contained in the list."));
    QCOMPARE(Basket::NamesOf(m_basket->GetItems()), QStringLiteral("[A]"));
}

void tst_ZAXFeatObjectListProperty::clearRaisesRemovedForEachAndNotifiesOnce()
{
    Fill({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    m_basket->items.Clear(false);
    QCOMPARE(Journal(),
             Entries("removed A while [B C] \n removed B while [C] \n removed C while [] \n notified of []"));
    QCOMPARE(m_basket->items.GetObjects(), Parts());
}

void tst_ZAXFeatObjectListProperty::silentClearRaisesRemoved()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    m_basket->items.Clear(true);
    QCOMPARE(Journal(), Entries("removed A while [B] \n removed B while []"));
}

void tst_ZAXFeatObjectListProperty::clearIsOneChange()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    const ZAXProbeObserver observer(*m_container);
    m_basket->items.Clear(false);
    QCOMPARE(Journal(), Entries("about to change Basket \n removed A while [B] \n removed B while [] \n"
                                "changed Basket \n notified of []"));
}

void tst_ZAXFeatObjectListProperty::clearOfAnEmptyListDoesNothing()
{
    const ZAXProbeObserver observer(*m_container);
    m_basket->items.Clear(false);
    m_basket->items.Clear(true);
    QCOMPARE(Journal(), QStringList());
}

void tst_ZAXFeatObjectListProperty::propertyWithoutNotifySignalRaisesAddedAndRemoved()
{
    List mute(m_basket, Basket::IndexOf("mute"), &Basket::Added, &Basket::Removed);
    mute.Add(Make({QStringLiteral("A")}).constFirst(), false);
    mute.RemoveItem(mute.GetItems().constFirst(), false);
    QCOMPARE(Journal(), Entries("added A while [] \n removed A while []"));
}

void tst_ZAXFeatObjectListProperty::unboundListRaisesAddedAndRemoved()
{
    List unbound(m_basket, -1, &Basket::Added, &Basket::Removed);
    unbound.Add(Make({QStringLiteral("A")}).constFirst(), false);
    unbound.Clear(false);
    QCOMPARE(Journal(), Entries("added A while [] \n removed A while []"));
}

void tst_ZAXFeatObjectListProperty::constParameterIsServed()
{
    List list(m_basket, -1, &Basket::AddedConst, &Basket::RemovedConst);
    const QSignalSpy added(m_basket, &Basket::AddedConst);
    const QSignalSpy removed(m_basket, &Basket::RemovedConst);
    ZAXProbePart* const part = Make({QStringLiteral("A")}).constFirst();
    list.Add(part, false);
    list.Clear(false);
    const QVariant pointer = QVariant::fromValue<const ZAXProbePart*>(part);
    QCOMPARE(added.toList(), QList<QVariantList>{{pointer}});
    QCOMPARE(removed.toList(), QList<QVariantList>{{pointer}});
}

void tst_ZAXFeatObjectListProperty::signalsWithoutParameterAreRaised()
{
    List list(m_basket, -1, &Basket::AddedBare, &Basket::RemovedBare);
    const QSignalSpy added(m_basket, &Basket::AddedBare);
    const QSignalSpy removed(m_basket, &Basket::RemovedBare);
    list.Add(Make({QStringLiteral("A")}).constFirst(), false);
    QCOMPARE(added.count(), 1);
    QCOMPARE(removed.count(), 0);
    list.Clear(false);
    QCOMPARE(added.count(), 1);
    QCOMPARE(removed.count(), 1);
}

void tst_ZAXFeatObjectListProperty::addedSignalOfTwoParametersIsRefused()
{
    List list(m_basket, -1, &Basket::AddedPair, &Basket::Removed);
    const QSignalSpy spy(m_basket, &Basket::AddedPair);
    const Parts parts = Make({QStringLiteral("A")});
    QCOMPARE(MessageOf([&] { list.Add(parts.constFirst(), false); }),
             QStringLiteral("Could not emit the added signal because the signature could not be deduced."));
    QCOMPARE(spy.count(), 0);
    QCOMPARE(list.GetObjects(), parts);
    QCOMPARE(ZAXFeatObjectPrivate::Get(*m_basket).openChanges, 0);
}

void tst_ZAXFeatObjectListProperty::removedSignalOfTwoParametersIsRefused()
{
    List list(m_basket, -1, &Basket::Added, &Basket::RemovedPair);
    list.Add(Make({QStringLiteral("A")}).constFirst(), false);
    const QString message =
        QStringLiteral("Could not emit the removed signal because the signature could not be deduced.");
    QCOMPARE(MessageOf([&] { list.RemoveItem(list.GetItems().constFirst(), false); }), message);
    list.Add(nullptr, false);
    QCOMPARE(MessageOf([&] { list.Clear(false); }), message);
    QCOMPARE(ZAXFeatObjectPrivate::Get(*m_basket).openChanges, 0);
}

void tst_ZAXFeatObjectListProperty::addedSignalOfAnotherClassIsRefused()
{
    List list(m_basket, -1, &LargeBasket::AddedLate, &Basket::Removed);
    const Parts parts = Make({QStringLiteral("A")});
    QCOMPARE(MessageOf([&] { list.Add(parts.constFirst(), false); }), QStringLiteral("The added signal is invalid."));
    QCOMPARE(list.GetObjects(), parts);
}

void tst_ZAXFeatObjectListProperty::removedSignalOfAnotherClassIsRefused()
{
    List list(m_basket, -1, &Basket::Added, &LargeBasket::RemovedLate);
    list.Add(Make({QStringLiteral("A")}).constFirst(), false);
    QCOMPARE(MessageOf([&] { list.RemoveItem(list.GetItems().constFirst(), false); }),
             QStringLiteral("The removed signal is invalid."));
    list.Add(nullptr, false);
    QCOMPARE(MessageOf([&] { list.Clear(false); }), QStringLiteral("The removed signal is invalid."));
}

void tst_ZAXFeatObjectListProperty::slotThatThrowsInAddLeavesTheChangeClosed()
{
    const Parts parts = Make({QStringLiteral("A")});
    const ZAXProbeObserver observer(*m_container);
    m_journal->FailAt("notified of [A]");
    QCOMPARE(MessageOf([&] { m_basket->items.Add(parts.constFirst(), false); }),
             QStringLiteral("The probe fails: notified of [A]."));
    QCOMPARE(Journal(), Entries("about to change Basket \n changed Basket \n notified of [A]"));
    QCOMPARE(ZAXFeatObjectPrivate::Get(*m_basket).openChanges, 0);
}

void tst_ZAXFeatObjectListProperty::slotThatThrowsInRemoveItemLeavesTheChangeClosed()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    const ZAXProbeObserver observer(*m_container);
    m_journal->FailAt("removed A while [B]");
    QCOMPARE(MessageOf([&] { m_basket->items.RemoveItem(m_basket->items.GetItems().constFirst(), false); }),
             QStringLiteral("The probe fails: removed A while [B]."));
    QCOMPARE(Journal(), Entries("about to change Basket \n removed A while [B] \n changed Basket"));
    QCOMPARE(Basket::NamesOf(m_basket->GetItems()), QStringLiteral("[B]"));
    QCOMPARE(ZAXFeatObjectPrivate::Get(*m_basket).openChanges, 0);
}

void tst_ZAXFeatObjectListProperty::slotThatThrowsInClearLeavesTheRest()
{
    Fill({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    const ZAXProbeObserver observer(*m_container);
    m_journal->FailAt("removed B while [C]");
    QCOMPARE(MessageOf([&] { m_basket->items.Clear(false); }), QStringLiteral("The probe fails: removed B while [C]."));
    QCOMPARE(Journal(),
             Entries("about to change Basket \n removed A while [B C] \n removed B while [C] \n changed Basket"));
    QCOMPARE(Basket::NamesOf(m_basket->GetItems()), QStringLiteral("[C]"));
    QCOMPARE(ZAXFeatObjectPrivate::Get(*m_basket).openChanges, 0);
}

void tst_ZAXFeatObjectListProperty::slotMayRemoveTheObjectThatLeft()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    connect(m_basket, &Basket::Removed, this, [](ZAXProbePart* part) { part->Remove(); });
    m_basket->items.RemoveItem(m_basket->items.GetItems().constFirst(), false);
    QCOMPARE(Basket::NamesOf(m_basket->GetItems()), QStringLiteral("[B]"));
    m_basket->items.Clear(false);
    QCOMPARE(m_basket->GetItems(), Parts());
    QCOMPARE(m_container->GetRoots(), QList<ZAXFeatObject*>{m_basket});
}

void tst_ZAXFeatObjectListProperty::slotMayDeleteTheObjectThatLeft()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    connect(m_basket, &Basket::Removed, this, [](ZAXProbePart* part) { delete part; });
    m_basket->items.Clear(false);
    QCOMPARE(m_basket->GetItems(), Parts());
    QCOMPARE(m_container->GetRoots(), QList<ZAXFeatObject*>{m_basket});
}

void tst_ZAXFeatObjectListProperty::slotMayAddBehindARemoval()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    const Parts parts = Make({QStringLiteral("C")});
    connect(m_basket, &Basket::Removed, this, [&] { m_basket->items.Add(parts.constFirst(), false); });
    m_basket->items.RemoveItem(m_basket->items.GetItems().constFirst(), false);
    QCOMPARE(Basket::NamesOf(m_basket->GetItems()), QStringLiteral("[B C]"));
    QCOMPARE(ZAXFeatObjectPrivate::Get(*m_basket).openChanges, 0);
}

void tst_ZAXFeatObjectListProperty::objectThatLeftHasNoDependentAnyMore()
{
    Fill({QStringLiteral("A")});
    qsizetype dependents = -1;
    connect(m_basket, &Basket::Removed, this,
            [&](const ZAXProbePart* part) { dependents = part->GetAllDependents().size(); });
    m_basket->items.Clear(false);
    QCOMPARE(dependents, 0);
}

void tst_ZAXFeatObjectListProperty::removedObjectLeavesTheList()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    m_basket->GetItems().constFirst()->Remove();
    QCOMPARE(Basket::NamesOf(m_basket->GetItems()), QStringLiteral("[B]"));
    QCOMPARE(Journal().first(2), Entries("removed A while [B] \n notified of [B]"));
}

void tst_ZAXFeatObjectListProperty::removedObjectLeavesTheListAsOftenAsItIsInIt()
{
    const Parts parts = Make({QStringLiteral("A"), QStringLiteral("B")});
    for (ZAXProbePart* part : {parts.at(0), parts.at(1), parts.at(0)})
        m_basket->items.Add(part, true);
    parts.at(0)->Remove();
    QCOMPARE(m_basket->GetItems(), Parts{parts.at(1)});
}

void tst_ZAXFeatObjectListProperty::deletedObjectLeavesANullItem()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    delete m_basket->GetItems().constFirst();
    QCOMPARE(Basket::NamesOf(m_basket->GetItems()), QStringLiteral("[null B]"));
    QCOMPARE(Journal(), Entries("destroyed A"));
}

void tst_ZAXFeatObjectListProperty::destroyedListLeavesNoTrace()
{
    const Parts parts = Make({QStringLiteral("A")});
    {
        List list(m_basket, -1, &Basket::Added, &Basket::Removed);
        list.Add(parts.constFirst(), true);
        QCOMPARE(parts.constFirst()->GetAllDependents(), QList<ZAXFeatObject*>{m_basket});
        Journal();
    }
    QCOMPARE(Journal(), QStringList());
    QCOMPARE(parts.constFirst()->GetAllDependents(), QList<ZAXFeatObject*>());
}

void tst_ZAXFeatObjectListProperty::writesCountAndReferences()
{
    ZAXGeoStream stream(m_container.get());
    stream << m_basket->items;
    QCOMPARE(stream.GetPayload().toHex(' '), QByteArray("00 00 00 00"));
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    const Parts parts = m_basket->GetItems();
    m_basket->items.Add(parts.constFirst(), true);
    ZAXGeoStream filled(m_container.get());
    filled << m_basket->items;
    QCOMPARE(filled.GetPayload().toHex(' '), QByteArray("00 00 00 03 00 00 00 01 00 00 00 02 00 00 00 01"));
    QCOMPARE(filled.GetReferences(),
             QList<ZAXGeoGeometryRef>({ZAXGeoGeometryRef(parts.at(0)), ZAXGeoGeometryRef(parts.at(1))}));
}

void tst_ZAXFeatObjectListProperty::writesNullItemsAsInvalidReferences()
{
    m_basket->items.Add(nullptr, true);
    ZAXGeoStream stream(m_container.get());
    stream << m_basket->items;
    QCOMPARE(stream.GetPayload().toHex(' '), QByteArray("00 00 00 01 00 00 00 00"));
    QCOMPARE(stream.GetReferences(), QList<ZAXGeoGeometryRef>());
}

void tst_ZAXFeatObjectListProperty::readsWhatItWrote()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    m_basket->items.Add(nullptr, true);
    const Parts parts = m_basket->GetItems();
    ZAXGeoStream writer(m_container.get());
    writer << m_basket->items;
    m_basket->items.Clear(true);
    ZAXGeoStream reader(m_container.get(), writer.GetPayload(), writer.GetReferences());
    reader >> m_basket->items;
    QCOMPARE(m_basket->GetItems(), parts);
    QVERIFY(reader.GetDataStream().atEnd());
    QCOMPARE(reader.GetDataStream().status(), QDataStream::Ok);
}

void tst_ZAXFeatObjectListProperty::readingReplacesTheListWithNotification()
{
    Fill({QStringLiteral("A"), QStringLiteral("B")});
    const Parts parts = Make({QStringLiteral("C"), QStringLiteral("D")});
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("000000020000000100000002"),
                        {ZAXGeoGeometryRef(parts.at(0)), ZAXGeoGeometryRef(parts.at(1))});
    stream >> m_basket->items;
    QCOMPARE(m_basket->GetItems(), parts);
    QCOMPARE(Journal(), Entries("removed A while [B] \n removed B while [] \n notified of [] \n"
                                "notified of [C] \n added C while [C] \n notified of [C D] \n added D while [C D]"));
}

void tst_ZAXFeatObjectListProperty::readingMapsTheReferences()
{
    const Parts parts = Make({QStringLiteral("A"), QStringLiteral("B")});
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("0000000100000001"), {ZAXGeoGeometryRef(parts.at(0))});
    stream.SetReferenceMap([&](const ZAXGeoGeometryRef&) { return ZAXGeoGeometryRef(parts.at(1)); });
    stream >> m_basket->items;
    QCOMPARE(m_basket->GetItems(), Parts{parts.at(1)});
}

void tst_ZAXFeatObjectListProperty::referenceMappedToNothingGivesANullItem()
{
    const Parts parts = Make({QStringLiteral("A")});
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("0000000100000001"), {ZAXGeoGeometryRef(parts.at(0))});
    stream.SetReferenceMap([](const ZAXGeoGeometryRef&) { return ZAXGeoGeometryRef(); });
    stream >> m_basket->items;
    QCOMPARE(m_basket->GetItems(), Parts{nullptr});
}

void tst_ZAXFeatObjectListProperty::invalidReferenceGivesANullItem()
{
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("000000020000000000000000"));
    stream >> m_basket->items;
    QCOMPARE(m_basket->GetItems(), Parts({nullptr, nullptr}));
    QCOMPARE(stream.GetDataStream().status(), QDataStream::Ok);
}

void tst_ZAXFeatObjectListProperty::referenceToAnotherClassIsRefused()
{
    const Parts parts = Make({QStringLiteral("A")});
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("000000020000000100000002"),
                        {ZAXGeoGeometryRef(parts.constFirst()), ZAXGeoGeometryRef(m_basket)});
    QVERIFY_THROWS_EXCEPTION(ZAXGeoGeometryNotFoundException, stream >> m_basket->items);
    QCOMPARE(m_basket->GetItems(), parts);
}

void tst_ZAXFeatObjectListProperty::referenceToNothingIsRefused()
{
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("0000000100000001"), {ZAXGeoGeometryRef::FromId(12345)});
    QCOMPARE(MessageOf([&] { stream >> m_basket->items; }),
             QStringLiteral("The object with the reference 12345 was not found, or is of another kind."));
    QVERIFY(m_basket->GetItems().isEmpty());
}

void tst_ZAXFeatObjectListProperty::referenceWithoutAContainerIsRefused()
{
    ZAXGeoStream stream(nullptr, QByteArray::fromHex("000000020000000000000001"), {ZAXGeoGeometryRef::FromId(1)});
    QVERIFY_THROWS_EXCEPTION(ZAXGeoGeometryNotFoundException, stream >> m_basket->items);
    QCOMPARE(m_basket->GetItems(), Parts{nullptr});
}

void tst_ZAXFeatObjectListProperty::readingPastTheEndKeepsWhatWasRead()
{
    const Parts parts = Make({QStringLiteral("A")});
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("00000002000000010000"),
                        {ZAXGeoGeometryRef(parts.constFirst())});
    stream >> m_basket->items;
    QCOMPARE(m_basket->GetItems(), parts);
    QCOMPARE(stream.GetDataStream().status(), QDataStream::ReadPastEnd);
}

void tst_ZAXFeatObjectListProperty::damagedCountIsReadToTheEndOnly_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("status");
    QTest::newRow("no count") << QByteArray() << int(QDataStream::ReadPastEnd);
    QTest::newRow("cut count") << QByteArray::fromHex("0000") << int(QDataStream::ReadPastEnd);
    QTest::newRow("largest") << QByteArray::fromHex("7fffffff") << int(QDataStream::ReadPastEnd);
    QTest::newRow("negative") << QByteArray::fromHex("ffffffff") << int(QDataStream::Ok);
    QTest::newRow("most negative") << QByteArray::fromHex("80000000") << int(QDataStream::Ok);
    QTest::newRow("place outside the table")
        << QByteArray::fromHex("0000000200000005") << int(QDataStream::ReadCorruptData);
}

void tst_ZAXFeatObjectListProperty::damagedCountIsReadToTheEndOnly()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, status);
    Fill({QStringLiteral("A")});
    ZAXGeoStream stream(m_container.get(), payload);
    stream >> m_basket->items;
    QVERIFY(m_basket->GetItems().isEmpty());
    QCOMPARE(int(stream.GetDataStream().status()), status);
}

QTEST_GUILESS_MAIN(tst_ZAXFeatObjectListProperty)
#include "tst_ZAXFeatObjectListProperty.moc"
