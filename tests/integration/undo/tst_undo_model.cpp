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
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

#include <algorithm>
#include <stdexcept>

// Undo and redo against a plain value that says what the document must be, and over whatever slots and features throw.

namespace {

/// A part as a value.
struct Node
{
    QString label;
    bool isVisible = true;
    QString text;
    quint64 link = 0;
    QList<quint64> links;
    QList<quint64> children;

    friend bool operator==(const Node& a, const Node& b)
    {
        // Not the operator of QList, which hands null pointers to memcmp() for empty lists.
        return a.label == b.label && a.isVisible == b.isVisible && a.text == b.text && a.link == b.link &&
               std::ranges::equal(a.links, b.links) && std::ranges::equal(a.children, b.children);
    }
};

/// A document of parts as a value. The children of 0 are the parts at the top.
struct Model
{
    QMap<quint64, Node> nodes{{0, Node()}};

    QList<quint64> Subtree(quint64 id) const
    {
        QList<quint64> ids{id};
        for (const quint64 child : nodes[id].children)
            ids += Subtree(child);
        return ids;
    }
    quint64 ParentOf(quint64 id) const
    {
        const auto parent =
            std::find_if(nodes.cbegin(), nodes.cend(), [id](const Node& node) { return node.children.contains(id); });
        return parent.key();
    }
    /// All but the top.
    QList<quint64> Ids() const { return nodes.keys().sliced(1); }

    void Add(quint64 id, quint64 parent, qsizetype index = -1)
    {
        auto& children = nodes[parent].children;
        children.insert(index < 0 || index > children.size() ? children.size() : index, id);
    }
    void Move(quint64 id, quint64 parent, qsizetype index)
    {
        nodes[ParentOf(id)].children.removeOne(id);
        Add(id, parent, index);
    }
    void Remove(quint64 id)
    {
        const auto gone = Subtree(id);
        nodes[ParentOf(id)].children.removeOne(id);
        for (const quint64 each : gone)
            nodes.remove(each);
        for (Node& node : nodes) {
            node.links.removeIf([&](quint64 link) { return gone.contains(link); });
            if (gone.contains(node.link))
                node.link = 0;
        }
    }
    /// \a copies are the ids of the copy, in the order of the subtree of \a id.
    void Duplicate(quint64 id, const QList<quint64>& copies)
    {
        const auto originals = Subtree(id);
        QMap<quint64, quint64> map;
        for (qsizetype i = 0; i < originals.size(); ++i)
            map[originals.at(i)] = copies.at(i);
        const auto mapped = [&](quint64 to) { return map.value(to, to); };
        for (const quint64 original : originals) {
            Node copy = nodes[original];
            copy.link = mapped(copy.link);
            std::ranges::transform(copy.links, copy.links.begin(), mapped);
            std::ranges::transform(copy.children, copy.children.begin(), mapped);
            nodes[map[original]] = copy;
        }
        const quint64 parent = ParentOf(id);
        Add(map[id], parent, nodes[parent].children.indexOf(id) + 1);
    }

    friend bool operator==(const Model&, const Model&) = default;
};

/// What a document of parts is, read from its features.
Model ModelOf(const ZAXHostDocument& document)
{
    Model model;
    const auto idOf = [](const ZAXFeatObject* feature) { return feature ? feature->GetId() : 0; };
    const auto idsOf = [&](const QList<ZAXFeatObject*>& features) {
        QList<quint64> ids;
        std::ranges::transform(features, std::back_inserter(ids), idOf);
        return ids;
    };
    model.nodes[0].children = idsOf(document.GetContainer()->GetRoots());
    const auto geometries = document.GetContainer()->GetGeometries();
    for (ZAXGeoGeometry* geometry : geometries) {
        const auto* const part = qobject_cast<ZAXProbePart*>(geometry);
        model.nodes[part->GetId()] = {part->GetLabel(),
                                      part->IsVisible(),
                                      part->data.text.GetValue(),
                                      idOf(part->data.link.GetPointedObject()),
                                      idsOf(part->links.GetObjects()),
                                      idsOf(part->GetChildren())};
    }
    return model;
}

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

/// Does the same to a document and to its model, at random.
class Player
{
public:
    Player(ZAXHostDocument& document, quint32 seed) : m_document(document), m_random(seed) {}

    void Change()
    {
        const int operation = m_random.bounded(14);
        if (model.Ids().isEmpty() || operation <= 1)
            return Create();
        const quint64 id = Pick(model.Ids());
        ZAXProbePart* const part = Part(id);
        Node& node = model.nodes[id];
        switch (operation) {
        case 2:
        case 3:
            node.text = QString::number(m_random.bounded(4));
            part->SetText(node.text, operation == 2);
            break;
        case 4:
            node.label = QString::number(m_random.bounded(4));
            part->SetLabel(node.label);
            break;
        case 5:
            node.isVisible = m_random.bounded(2);
            part->SetVisibility(node.isVisible);
            break;
        case 6:
        case 7:
            node.link = m_random.bounded(4) ? Pick(model.Ids()) : 0;
            part->data.link.SetPointedObject(Part(node.link), operation == 6);
            break;
        case 8:
            node.links.append(Pick(model.Ids()));
            part->links.Add(Part(node.links.constLast()), m_random.bounded(2));
            break;
        case 9:
            Unlink(part, node);
            break;
        case 10:
            Move(id);
            break;
        case 11:
            MoveToFront(part);
            break;
        case 12:
            model.Remove(id);
            part->Remove();
            break;
        default:
            Duplicate(id);
        }
    }

    Model model;

private:
    template <typename T>
    T Pick(const QList<T>& list)
    {
        return list.at(m_random.bounded(int(list.size())));
    }
    ZAXProbePart* Part(quint64 id) const
    {
        return qobject_cast<ZAXProbePart*>(m_document.GetContainer()->GetGeometryByRef(ZAXGeoGeometryRef::FromId(id)));
    }
    void Create()
    {
        const quint64 parent = Pick(model.nodes.keys());
        const auto* const part = m_document.GetContainer()->CreateInstance("ZAXProbePart", Part(parent));
        model.nodes[part->GetId()].label = part->GetLabel();
        model.Add(part->GetId(), parent);
    }
    void Unlink(ZAXProbePart* part, Node& node)
    {
        if (node.links.isEmpty())
            return;
        const int index = m_random.bounded(int(node.links.size()) + 1);
        if (index == node.links.size()) {
            node.links.clear();
            part->links.Clear(m_random.bounded(2));
        } else {
            node.links.removeAt(index);
            part->links.RemoveItem(part->links.GetItems().at(index), m_random.bounded(2));
        }
    }
    void Move(quint64 id)
    {
        const quint64 parent = Pick(model.Ids());
        const int index = m_random.bounded(4) - 1;
        const bool isMoved = Part(id)->MoveTo(Part(parent), index);
        if (isMoved != !model.Subtree(id).contains(parent))
            throw std::logic_error("moved into itself");
        if (isMoved)
            model.Move(id, parent, index);
    }
    /// What stands at the top cannot be reordered.
    void MoveToFront(ZAXProbePart* part)
    {
        if (part->MoveTo(part->GetParent(), 0))
            model.Move(part->GetId(), part->GetParent()->GetId(), 0);
    }
    void Duplicate(quint64 id)
    {
        if (model.nodes.size() > 40)
            return;
        const auto* const copy = ZAXHostDuplicator::Duplicate(Part(id));
        QList<quint64> ids{copy->GetId()};
        const auto below = copy->GetAllChildren();
        std::ranges::transform(below, std::back_inserter(ids), &ZAXFeatObject::GetId);
        model.Duplicate(id, ids);
    }

    ZAXHostDocument& m_document;
    QRandomGenerator m_random;
};

} // namespace

class tst_undo_model : public QObject
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

    void documentEqualsTheModel_data();
    void documentEqualsTheModel();

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

void tst_undo_model::initTestCase()
{
    ZAXGeoContainer::RegisterType(&ZAXProbePart::staticMetaObject);
    ZAXGeoContainer::RegisterType(&ZAXProbeNest::staticMetaObject);
    ZAXGeoContainer::RegisterType(&ZAXProbeTenant::staticMetaObject);
}

void tst_undo_model::init()
{
    document = std::make_unique<ZAXHostDocument>();
    part = Create("ZAXProbePart");
    other = Create("ZAXProbePart");
    QVERIFY(Undo().Clear());
    Stack().setClean();
}

void tst_undo_model::cleanup()
{
    ZAXProbeData::failAt = "";
    document.reset();
}

void tst_undo_model::documentEqualsTheModel_data()
{
    QTest::addColumn<quint32>("seed");
    const int sequences = qEnvironmentVariableIntValue("ZAX_FULL_TESTS") ? 2000 : 60;
    for (int i = 0; i < sequences; ++i)
        QTest::addRow("sequence %d", i) << quint32(i);
}

void tst_undo_model::documentEqualsTheModel()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed + 1000000);
    document = std::make_unique<ZAXHostDocument>();
    Player player(*document, seed);

    // What the document was at each place on the stack.
    QList<Model> models{player.model};
    QByteArrayList bytes{document->Encode()};
    const auto follow = [&](int index) {
        QCOMPARE(Stack().index(), index);
        models.resize(index);
        bytes.resize(index);
        models.append(player.model);
        bytes.append(document->Encode());
    };
    for (int i = 0; i < 200; ++i) {
        const int index = Stack().index();
        const Model before = player.model;
        const int operation = random.bounded(8);
        if (operation == 0) {
            QVERIFY(Undo().Undo());
            player.model = models.at(Stack().index());
        } else if (operation == 1) {
            QVERIFY(Undo().Redo());
            player.model = models.at(Stack().index());
        } else if (operation == 2) {
            const bool isCommitted = random.bounded(2);
            {
                ZAXHostTransaction transaction(Undo(), QLatin1String("Several"));
                for (int n = random.bounded(6); n >= 0; --n)
                    player.Change();
                if (isCommitted)
                    QVERIFY(transaction.Commit());
            }
            if (!isCommitted)
                player.model = before;
            // A detour in the tree may leave a step that changes nothing in the end.
            if (player.model != before || Stack().index() > index)
                follow(index + 1);
        } else {
            player.Change();
            if (player.model != before)
                follow(index + 1);
        }
        QVERIFY(ModelOf(*document) == player.model);
        QCOMPARE(document->Encode(), bytes.at(Stack().index()));
    }
    while (Stack().canUndo()) {
        QVERIFY(Undo().Undo());
        QVERIFY(ModelOf(*document) == models.at(Stack().index()));
        QCOMPARE(document->Encode(), bytes.at(Stack().index()));
    }
    while (Stack().canRedo()) {
        QVERIFY(Undo().Redo());
        QVERIFY(ModelOf(*document) == models.at(Stack().index()));
        QCOMPARE(document->Encode(), bytes.at(Stack().index()));
    }
}

void tst_undo_model::silentChangeOfAPropertyIsOneStep()
{
    part->SetText(QLatin1String("silent"), true);
    QCOMPARE(Stack().count(), 1);
    QVERIFY(Undo().Undo());
    QCOMPARE(part->data.text.GetValue(), QString());
    QVERIFY(Undo().Redo());
    QCOMPARE(part->data.text.GetValue(), QLatin1String("silent"));
}

void tst_undo_model::reorderingIsOneStepWithoutSignalsOfTheParent()
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

void tst_undo_model::removalClearsLinksAndUndoRestoresThem()
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

void tst_undo_model::whatSlotsDoToANewFeatureIsPartOfItsStep()
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

void tst_undo_model::childAnnouncedBeforeItsParent()
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

void tst_undo_model::whatCameAndWentIsNoStep()
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

void tst_undo_model::moveThereAndBackIsNoStep()
{
    auto* const child = Create("ZAXProbePart", part);
    const int count = Stack().count();
    ZAXHostTransaction transaction(Undo(), QLatin1String("There and back"));
    QVERIFY(child->MoveTo(other, 0));
    QVERIFY(child->MoveTo(part, 0));
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), count);
}

void tst_undo_model::wayAroundIsNoStep()
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

void tst_undo_model::movesOfOneStepAreToldOfInPairs()
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

void tst_undo_model::newAndMovedIsToldOfInPairs()
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

void tst_undo_model::parentIsNotToldOfAGuestThatGoesOnAtOnce()
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

void tst_undo_model::undoneCreationTakesLeave()
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

void tst_undo_model::redoneRemovalTakesLeaveAgain()
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

void tst_undo_model::rolledBackCreationTakesLeave()
{
    ZAXHostTransaction transaction(Undo(), QLatin1String("Not yet"));
    auto* const tenant = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant"));
    tenant->AddReference();
    QVERIFY(transaction.Rollback());
    QVERIFY(!tenant->isMovedIn);
    tenant->RemoveReference();
}

void tst_undo_model::refusedLeaveLeavesTheFeature()
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

void tst_undo_model::refusedLeaveLeavesAllOfThem()
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

void tst_undo_model::removedChildTakesLeaveOnce()
{
    auto* const owner = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant", part));
    auto* const child = qobject_cast<ZAXProbeTenant*>(Create("ZAXProbeTenant", owner));
    owner->evicted = child;
    part->Remove();
    QCOMPARE(child->moves, 2);
    QVERIFY(Undo().Undo());
    QVERIFY(child->isMovedIn && owner->isMovedIn);
}

void tst_undo_model::changeOfARemovedFeatureMayFreeIt()
{
    const QPointer<ZAXProbePart> child = Create("ZAXProbePart", part);
    QVERIFY(Undo().Undo());
    child->SetLabel(QLatin1String("held on to"));
    QVERIFY(child);
    QCoreApplication::processEvents();
    QVERIFY(!child);
}

void tst_undo_model::undoLimitMayFreeWhatChanges()
{
    Stack().setUndoLimit(1);
    const QPointer<ZAXProbePart> child = Create("ZAXProbePart", part);
    child->Remove();
    child->SetLabel(QLatin1String("held on to"));
    QVERIFY(child);
    QCoreApplication::processEvents();
    QVERIFY(!child);
}

void tst_undo_model::actionOfTheStackIsRefusedDuringATransaction()
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

void tst_undo_model::actionOfTheStackStopsAtWhatCannotBeTakenBack()
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

void tst_undo_model::transactionWithoutADocumentIsRefused()
{
    ZAXHostUndo undo(nullptr);
    ZAXHostTransaction transaction(undo, QLatin1String("Nothing"));
    QCOMPARE(transaction.GetResult().GetMessage(), QLatin1String("There is no document."));
    QCOMPARE(transaction.Commit().GetMessage(), QLatin1String("There is no document."));
    QCOMPARE(transaction.Rollback().GetMessage(), QLatin1String("There is no document."));
}

void tst_undo_model::transactionThatEndsInASlotIsAStep()
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

void tst_undo_model::failedUndoIsToldOfInPairs()
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

void tst_undo_model::departureThatASlotSendsOnIsToldOfInPairs()
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

void tst_undo_model::newcomerThatASlotRemovesIsToldToNobody()
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

void tst_undo_model::failedUndoLeavesTheOrder()
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

void tst_undo_model::undoTakesMovesOfSlotsBackExactly()
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

void tst_undo_model::failedDuplicationLeavesTheDocumentClean()
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

void tst_undo_model::labelThatFailsLosesNoStep()
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

void tst_undo_model::objectMayRemoveAnotherWhenItIsLoaded()
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

void tst_undo_model::openedDocumentIsClean()
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

void tst_undo_model::pasteThatFailsLeavesNothing()
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

void tst_undo_model::slotThatThrowsLeavesWhatWasPasted()
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

void tst_undo_model::slotThatPointsAtWhatLeavesIsOverruled()
{
    other->links.Add(part, false);
    connect(other, &ZAXProbePart::LinkRemoved, this, [this](ZAXFeatObject* gone) { other->links.Add(gone, false); });
    part->Remove();
    QVERIFY(other->links.GetObjects().isEmpty());
}

void tst_undo_model::featureThatCannotBeSavedIsNotChanged()
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

void tst_undo_model::featureThatCannotBeSavedAnyMoreIsChangedForGood()
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

void tst_undo_model::rollBackSaysWhatItCouldNotTakeBack()
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

void tst_undo_model::undoWithoutAContainerDoesNothing()
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

void tst_undo_model::slotMayRemoveTheOwnerOfAList_data()
{
    QTest::addColumn<bool>("hasUndo");
    QTest::newRow("with undo") << true;
    QTest::newRow("without undo") << false;
}

void tst_undo_model::slotMayRemoveTheOwnerOfAList()
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

void tst_undo_model::slotMayRemoveWhatChanges_data()
{
    slotMayRemoveTheOwnerOfAList_data();
}

void tst_undo_model::slotMayRemoveWhatChanges()
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

void tst_undo_model::whatWasNeverAnnouncedIsNoStep()
{
    const QPointer<ZAXFeatObject> unborn = new ZAXProbePart(part);
    unborn->SetLabel(QLatin1String("unborn"));
    QVERIFY(unborn->MoveTo(other, 0));
    unborn->Remove();
    QVERIFY(!unborn);
    QCOMPARE(Stack().count(), 0);
}

void tst_undo_model::refusedStateLeavesEverythingAsItWas_data()
{
    QTest::addColumn<QByteArray>("failAt");
    QTest::newRow("Load") << QByteArray("Load");
    QTest::newRow("EndStateLoad") << QByteArray("EndStateLoad");
}

void tst_undo_model::refusedStateLeavesEverythingAsItWas()
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

void tst_undo_model::throwingSlotLeavesEverythingAsItWas_data()
{
    QTest::addColumn<QByteArray>("signal");
    for (const char* signal : {"label", "child removed", "child added"})
        QTest::newRow(signal) << QByteArray(signal);
}

void tst_undo_model::throwingSlotLeavesEverythingAsItWas()
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

void tst_undo_model::rollBackGoesOnOverThrowingSlots()
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

void tst_undo_model::slotsThatAnswerEachOtherComeToAnEnd()
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

void tst_undo_model::throwingRemovalCanBeTriedAgain()
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

void tst_undo_model::stepsOutliveADestroyedFeature()
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

void tst_undo_model::stepsOutliveADestroyedParent()
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
QTEST_MAIN(tst_undo_model)
#include "tst_undo_model.moc"
