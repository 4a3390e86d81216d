#include "ZAXFeatContainer.h"
#include "ZAXHostDocument.h"
#include "ZAXHostDuplicator.h"
#include "ZAXHostTransaction.h"
#include "ZAXHostUndo.h"
#include "ZAXProbeModules.h"

#include <QRandomGenerator>
#include <QTest>
#include <QUndoStack>

#include <algorithm>
#include <stdexcept>

// Undo and redo against a plain value that says what the document must be.

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
    ZAXHostUndo& Undo() { return document->GetUndo(); }
    QUndoStack& Stack() { return *Undo().GetStack(); }

    std::unique_ptr<ZAXHostDocument> document;

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void documentEqualsTheModel_data();
    void documentEqualsTheModel();
};

void tst_undo_model::initTestCase()
{
    ZAXGeoContainer::RegisterType(&ZAXProbePart::staticMetaObject);
}

void tst_undo_model::init()
{
    document = std::make_unique<ZAXHostDocument>();
}

void tst_undo_model::cleanup()
{
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

QTEST_GUILESS_MAIN(tst_undo_model)
#include "tst_undo_model.moc"
