#include "ZAXFeatContainer.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatFolder.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

// What a feature at the top lists of all below it, by class, whatever comes and goes.

namespace {

using Features = QList<ZAXFeatObject*>;

/// A folder of a class of its own.
class Crate : public ZAXFeatFolder
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit Crate(ZAXFeatObject* parent) : ZAXFeatFolder(parent) {}
};

/// Looks at the lists while it is made and destroyed.
class Watcher : public Crate
{
    Q_OBJECT

public:
    ~Watcher() override
    {
        if (GetParent())
            Look();
    }
    /// How often a list held another one that was not of its class.
    static int strangers;

protected:
    explicit Watcher(ZAXFeatObject* parent) : Crate(parent) { Look(); }

private:
    void Look() const;
};

int Watcher::strangers = 0;

/// While its base looks it is no box.
class Box : public Watcher
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit Box(ZAXFeatObject* parent) : Watcher(parent) {}
};

void Watcher::Look() const
{
    const ZAXFeatObject* top = GetParent();
    while (top->GetParent())
        top = top->GetParent();
    const auto boxes = top->GetAllChildrenOfType(&Box::staticMetaObject);
    strangers += int(
        std::ranges::count_if(boxes, [this](ZAXFeatObject* box) { return box != this && !qobject_cast<Box*>(box); }));
}

void Collect(const ZAXFeatObject* feature, const QMetaObject* type, Features& found)
{
    const auto children = feature->GetChildren();
    for (ZAXFeatObject* child : children) {
        if (type->cast(child))
            found.append(child);
        Collect(child, type, found);
    }
}

/// What a walk through the tree finds.
Features Collected(const ZAXFeatObject* top, const QMetaObject* type)
{
    Features found;
    Collect(top, type, found);
    return found;
}

/// Changes trees at random.
class Player
{
public:
    Player(ZAXFeatContainer& container, quint32 seed) : m_container(container), m_random(seed) {}

    bool IsNext(int among) { return m_random.bounded(among) == 0; }
    void Change()
    {
        ZAXFeatObject* const feature = Pick();
        switch (m_random.bounded(9)) {
        case 0:
        case 1:
        case 2:
            m_container.CreateInstance(IsNext(2) ? "Box" : "ZAXFeatFolder", feature);
            break;
        case 3:
            // Never initialised.
            new Crate(feature);
            break;
        case 4:
        case 5:
            feature->MoveTo(Pick(), m_random.bounded(4) - 1);
            break;
        case 6:
            feature->Remove();
            break;
        case 7:
            delete feature;
            break;
        default:
            // Aside and back.
            if (feature->GetParent()) {
                ZAXFeatObject* const parent = feature->GetParent();
                auto& d = ZAXFeatObjectPrivate::Get(*feature);
                d.SetAside();
                d.BringBack(IsNext(4) ? nullptr : parent, m_random.bounded(4) - 1);
            }
        }
        if (m_container.GetRoots().size() < 2)
            new ZAXFeatFolder(&m_container);
    }

private:
    ZAXFeatObject* Pick()
    {
        Features all;
        const auto roots = m_container.GetRoots();
        for (ZAXFeatObject* root : roots) {
            all.append(root);
            Collect(root, &ZAXFeatObject::staticMetaObject, all);
        }
        return all.at(m_random.bounded(int(all.size())));
    }

    ZAXFeatContainer& m_container;
    QRandomGenerator m_random;
};

} // namespace

class tst_ZAXFeatChildLists : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void listsFollowTheTree_data();
    void listsFollowTheTree();
    void listIsOfTheTimeOfAsking();
    void featureBelowTheTopListsToo();
    void manyChangesAreFollowed();
    void listsOfAFeatureThatIsBeingDestroyedGoWithIt();
};

void tst_ZAXFeatChildLists::initTestCase()
{
    ZAXGeoContainer::RegisterType(&Box::staticMetaObject);
}

void tst_ZAXFeatChildLists::listsFollowTheTree_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<int>("changesPerLook");
    for (quint32 seed = 0; seed < 60; ++seed)
        QTest::addRow("sequence %u", seed) << seed << (seed % 3 == 0 ? 1 : seed % 3 == 1 ? 4 : 12);
}

void tst_ZAXFeatChildLists::listsFollowTheTree()
{
    QFETCH(quint32, seed);
    QFETCH(int, changesPerLook);
    ZAXFeatContainer container;
    for (int i = 0; i < 2; ++i)
        new ZAXFeatFolder(&container);
    Player player(container, seed);
    for (int i = 0; i < 400; ++i) {
        player.Change();
        if (!player.IsNext(changesPerLook))
            continue;
        const auto roots = container.GetRoots();
        for (const ZAXFeatObject* root : roots) {
            for (const QMetaObject* type :
                 {&Box::staticMetaObject, &Crate::staticMetaObject, &ZAXFeatObject::staticMetaObject})
                QCOMPARE(root->GetAllChildrenOfType(type), Collected(root, type));
            QCOMPARE(root->GetAllChildren(), Collected(root, &ZAXFeatObject::staticMetaObject));
        }
    }
    QCOMPARE(Watcher::strangers, 0);
}

void tst_ZAXFeatChildLists::listIsOfTheTimeOfAsking()
{
    ZAXFeatContainer container;
    auto* const root = new ZAXFeatFolder(&container);
    ZAXFeatObject* const first = container.CreateInstance("Box", root);
    const Features before = root->GetAllChildrenOfType(&Box::staticMetaObject);
    ZAXFeatObject* const second = container.CreateInstance("Box", root);
    QCOMPARE(root->GetAllChildrenOfType(&Box::staticMetaObject), Features({first, second}));
    QCOMPARE(before, Features{first});
}

void tst_ZAXFeatChildLists::featureBelowTheTopListsToo()
{
    ZAXFeatContainer container;
    auto* const root = new ZAXFeatFolder(&container);
    ZAXFeatObject* const folder = container.CreateInstance("ZAXFeatFolder", root);
    ZAXFeatObject* const box = container.CreateInstance("Box", folder);
    QCOMPARE(folder->GetAllChildrenOfType(&Box::staticMetaObject), Features{box});
    QCOMPARE(box->GetAllChildrenOfType(&Box::staticMetaObject), Features());
}

void tst_ZAXFeatChildLists::manyChangesAreFollowed()
{
    ZAXFeatContainer container;
    auto* const root = new ZAXFeatFolder(&container);
    auto* const folder = new ZAXFeatFolder(root);
    QCOMPARE(root->GetAllChildrenOfType(&Box::staticMetaObject), Features());
    Features boxes;
    for (int i = 0; i < 200; ++i)
        boxes.append(container.CreateInstance("Box", folder));
    QCOMPARE(root->GetAllChildrenOfType(&Box::staticMetaObject), boxes);
    // With more below it than is worth to be followed.
    folder->Remove();
    QCOMPARE(root->GetAllChildrenOfType(&Box::staticMetaObject), Features());
}

void tst_ZAXFeatChildLists::listsOfAFeatureThatIsBeingDestroyedGoWithIt()
{
    ZAXFeatContainer container;
    auto* const root = new ZAXFeatFolder(&container);
    ZAXFeatObject* const box = container.CreateInstance("Box", root);
    Features seen{box};
    connect(box, &QObject::destroyed, this, [&] { seen = root->GetAllChildrenOfType(&Box::staticMetaObject); });
    delete root;
    QCOMPARE(seen, Features());
    // Nobody climbs the tree for the sake of lists any more.
    QCOMPARE(ZAXFeatContainerPrivate::Get(container).listing, 0);
}

QTEST_GUILESS_MAIN(tst_ZAXFeatChildLists)
#include "tst_ZAXFeatChildLists.moc"
