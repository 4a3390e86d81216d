#include "ZAXFeatObject.h"

#include "ZAXFeatFolder.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXProbeFeatures.h"
#include "ZAXProbeJournal.h"

#include <QEvent>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>

using Features = QList<ZAXFeatObject*>;
using Messages = QList<ZAXFeatObject::PropertyMessage>;

/// Has a label with parts of its own.
class NumberedPart : public ZAXProbePart
{
    Q_OBJECT

public:
    using ZAXProbePart::ZAXProbePart;
    QString GetLabelPrefix() const override { return QStringLiteral("No. "); }
    QString GetLabelSuffix() const override { return QStringLiteral(" (new)"); }
};

/// Declares nothing about itself.
class PlainFeature : public ZAXFeatObject
{
    Q_OBJECT

public:
    explicit PlainFeature(ZAXFeatContainer* container) : ZAXFeatObject(container, nullptr) {}
};

/// Translates one text of one context.
class OneTextTranslator : public QTranslator
{
public:
    OneTextTranslator(const char* context, const char* text, const QString& translation)
        : m_context(context), m_text(text), m_translation(translation)
    {
    }
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        return m_context == context && m_text == text ? m_translation : QString();
    }
    bool isEmpty() const override { return false; }

private:
    QByteArray m_context;
    QByteArray m_text;
    QString m_translation;
};

class tst_ZAXFeatObject : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    // construction and announcement
    void isAChildFromConstructionOn();
    void isAnnouncedOnceAtInitialize();
    void initializesTheUnstreamedPartOnce();
    void announcementIsAStep();
    void parentOfAnotherDocumentIsRefused();
    void mayHaveNoContainer();
    void recreatedFeatureStandsAtTheTop();

    // label, visibility, messages
    void labelIsTheDefaultOfTheClass();
    void defaultLabelIsTranslated();
    void labelIsWhatWasSet();
    void labelHasPrefixAndSuffix();
    void changeOfTheLabelIsAnnounced();
    void equalLabelChangesNothing();
    void visibilityIsAnnounced();
    void equalVisibilityChangesNothing();
    void writesLabelAndVisibility();
    void readsLabelAndVisibility();
    void messagesAreListedInTheirOrder();
    void messagesAreListedByProperty();
    void sameMessageIsKeptOnce();
    void updateResultClearsTheMessages();
    void messageStatusesHaveTheirNumbers();

    // what may stand where
    void isValidParent_data();
    void isValidParent();
    void baseAllowsFeaturesOnly();
    void baseAllowsTheUserEverything();
    void eventsGoToQt();

    // tree
    void childrenAreListedInOrder();
    void allChildrenAreListedDepthFirst();
    void dependentsPointIntoTheSubtree();
    void dependentsOfDependentsDependToo();
    void dependentIsListedOnce();
    void featuresOfTheSubtreeAreNoDependents();
    void listOfOwnChildrenMakesNoDependent();
    void listOfOtherFeaturesMakesADependent();
    void pointerAtAnOwnChildMakesADependent();
    void removedFeatureIsNoDependent();

    // Remove
    void removeAnnouncesTheWholeFeature();
    void removeKeepsItsOrder();
    void removeReleasesPointersIntoTheSubtree();
    void removeTakesItemsOutOfLists();
    void removeLeavesPointersWithinTheSubtree();
    void removeAtTheTop();
    void removeOfAFeatureThatWasNeverAnnounced();
    void removeWithoutContainer();
    void secondRemoveDoesNothing();
    void heldFeatureOutlivesItsRemoval();
    void heldChildOutlivesTheRemovalOfItsParent();
    void removedFeatureIsNotFound();
    void slotThatThrowsBeforeTheRemovalLeavesTheFeature();
    void cleanupThatThrowsLeavesTheFeature();
    void slotThatThrowsBehindTheRemovalKeepsNothing();

    // deletion
    void deletionAnnouncesNothing();
    void deletionTakesTheChildrenAlong();
    void deletionLeavesNoDanglingPointer();

    // MoveTo
    void moveChangesThePlace_data();
    void moveChangesThePlace();
    void moveToAnotherParentIsAnnounced();
    void moveWithinTheParentIsNotAnnounced();
    void moveIsOneStep();
    void moveTakesTheSubtreeAlong();
    void moveFromTheTop();
    void moveIsRefused_data();
    void moveIsRefused();
    void moveOfARemovedFeatureIsRefused();
    void slotMayRemoveTheFeatureThatMoves();
    void emptyLabelIsStoredAsNone();

private:
    QStringList Journal() { return m_journal->Take(); }
    ZAXProbePart* Part(const char* name);

    std::unique_ptr<ZAXProbeJournal> m_journal;
    std::unique_ptr<ZAXProbeRegistration> m_registration;
    std::unique_ptr<ZAXFeatContainer> m_container;
    /// The tree A (B (C, D), E), F.
    QHash<QByteArray, ZAXProbePart*> m_parts;
};

void tst_ZAXFeatObject::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    m_registration = std::make_unique<ZAXProbeRegistration>();
    m_container = std::make_unique<ZAXFeatContainer>();
    m_parts["A"] = AddPart(*m_container, "A");
    m_parts["B"] = AddPart(Part("A"), "B");
    m_parts["C"] = AddPart(Part("B"), "C");
    m_parts["D"] = AddPart(Part("B"), "D");
    m_parts["E"] = AddPart(Part("A"), "E");
    m_parts["F"] = AddPart(*m_container, "F");
    m_journal = std::make_unique<ZAXProbeJournal>();
}

void tst_ZAXFeatObject::cleanup()
{
    m_journal.reset();
    m_container.reset();
    m_parts.clear();
    m_registration.reset();
}

ZAXProbePart* tst_ZAXFeatObject::Part(const char* name)
{
    return m_parts.value(name);
}

void tst_ZAXFeatObject::isAChildFromConstructionOn()
{
    const QSignalSpy spy(Part("F"), &ZAXFeatObject::ChildAdded);
    auto* const part = new ZAXProbePart(Part("F"));
    QCOMPARE(part->GetParent(), Part("F"));
    QCOMPARE(Part("F")->GetChildren(), Features{part});
    QCOMPARE(part->GetContainer(), m_container.get());
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatObject::isAnnouncedOnceAtInitialize()
{
    Features announced;
    connect(Part("F"), &ZAXFeatObject::ChildAdded, this,
            [&](ZAXFeatObject* child) { announced.append(qobject_cast<ZAXProbePart*>(child)); });
    auto* const part = new ZAXProbePart(Part("F"));
    part->Initialize();
    part->Initialize();
    QCOMPARE(announced, Features{part});
}

void tst_ZAXFeatObject::initializesTheUnstreamedPartOnce()
{
    auto* const part = new ZAXProbePart(Part("F"));
    part->SetName(QStringLiteral("G"));
    part->Initialize();
    part->Initialize();
    QCOMPARE(Journal(), Entries("InitializeNonStreamed G \n Initialize G \n Initialize G"));
}

void tst_ZAXFeatObject::announcementIsAStep()
{
    auto* const part = new ZAXProbePart(Part("F"));
    const ZAXProbeObserver observer(*m_container);
    connect(Part("F"), &ZAXFeatObject::ChildAdded, this, [] { ZAXProbeJournal::Note(QStringLiteral("ChildAdded")); });
    part->Initialize();
    QCOMPARE(Journal(), Entries("InitializeNonStreamed \n came \n ChildAdded \n Initialize"));
}

void tst_ZAXFeatObject::parentOfAnotherDocumentIsRefused()
{
    ZAXFeatContainer other;
    ZAXProbePart* const stranger = AddPart(other, "stranger");
    const QString message = QStringLiteral("The parent belongs to another document.");
    QCOMPARE(MessageOf([&] { const ZAXFeatFolder folder(m_container.get(), stranger); }), message);
    QCOMPARE(MessageOf([&] { const ZAXFeatFolder folder(nullptr, stranger); }), message);
    QCOMPARE(stranger->GetChildren(), Features());
    QCOMPARE(m_container->GetRoots(), Features({Part("A"), Part("F")}));
    QCOMPARE(m_container->GetGeometries().size(), 6);
}

void tst_ZAXFeatObject::mayHaveNoContainer()
{
    auto* const part = new ZAXProbePart(static_cast<ZAXFeatContainer*>(nullptr));
    part->Initialize();
    auto* const child = new ZAXProbePart(part);
    child->Initialize();
    child->SetLabel(QStringLiteral("child"));
    QCOMPARE(part->GetChildren(), Features{child});
    QVERIFY(!part->GetContainer());
    QCOMPARE(part->GetId(), quint64(0));
    delete part;
}

void tst_ZAXFeatObject::recreatedFeatureStandsAtTheTop()
{
    auto* const part = new ZAXProbePart(m_container.get(), ZAXGeoGeometryRef::FromId(100));
    QVERIFY(!part->GetParent());
    QCOMPARE(part->GetId(), quint64(100));
    QCOMPARE(m_container->GetRoots(), Features({Part("A"), Part("F"), part}));
}

void tst_ZAXFeatObject::labelIsTheDefaultOfTheClass()
{
    QCOMPARE(Part("A")->GetLabel(), QStringLiteral("Part"));
    QCOMPARE(ZAXProbeLeaf(Part("A")).GetLabel(), QStringLiteral("Leaf"));
    QCOMPARE(ZAXProbeSpecialPart(Part("A")).GetLabel(), QStringLiteral("Part"));
    QCOMPARE(PlainFeature(m_container.get()).GetLabel(), QStringLiteral("Feature"));
}

void tst_ZAXFeatObject::defaultLabelIsTranslated()
{
    OneTextTranslator translator("ZAXProbePart", "Part", QStringLiteral("Teil"));
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QCOMPARE(Part("A")->GetLabel(), QStringLiteral("Teil"));
    Part("A")->SetLabel(QStringLiteral("Part"));
    QCOMPARE(Part("A")->GetLabel(), QStringLiteral("Part"));
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(Part("B")->GetLabel(), QStringLiteral("Part"));
}

void tst_ZAXFeatObject::labelIsWhatWasSet()
{
    Part("A")->SetLabel(QStringLiteral("100 %1 ø"));
    QCOMPARE(Part("A")->GetLabel(), QStringLiteral("100 %1 ø"));
    Part("A")->SetLabel(QString());
    QCOMPARE(Part("A")->GetLabel(), QStringLiteral("Part"));
}

void tst_ZAXFeatObject::labelHasPrefixAndSuffix()
{
    NumberedPart part(m_container.get());
    QCOMPARE(part.GetLabel(), QStringLiteral("No. Part (new)"));
    part.SetLabel(QStringLiteral("7"));
    QCOMPARE(part.GetLabel(), QStringLiteral("No. 7 (new)"));
    QCOMPARE(Part("A")->GetLabelPrefix(), QString());
    QCOMPARE(Part("A")->GetLabelSuffix(), QString());
}

void tst_ZAXFeatObject::changeOfTheLabelIsAnnounced()
{
    auto* const part = new NumberedPart(m_container.get());
    part->SetName(QStringLiteral("N"));
    const ZAXProbeObserver observer(*m_container);
    connect(part, &ZAXFeatObject::LabelChanged, this, [](const QString& label) { ZAXProbeJournal::Note(label); });
    part->SetLabel(QStringLiteral("7"));
    part->SetLabel(QString());
    QCOMPARE(Journal(), Entries("about to change N \n changed N \n No. 7 (new) \n"
                                "about to change N \n changed N \n No. Part (new)"));
}

void tst_ZAXFeatObject::equalLabelChangesNothing()
{
    Part("A")->SetLabel(QStringLiteral("same"));
    const ZAXProbeObserver observer(*m_container);
    const QSignalSpy spy(Part("A"), &ZAXFeatObject::LabelChanged);
    Part("A")->SetLabel(QStringLiteral("same"));
    Part("B")->SetLabel(QString());
    QCOMPARE(Journal(), QStringList());
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatObject::visibilityIsAnnounced()
{
    QVERIFY(Part("A")->IsVisible());
    const ZAXProbeObserver observer(*m_container);
    const QSignalSpy spy(Part("A"), &ZAXFeatObject::VisibilityChanged);
    Part("A")->SetVisibility(false);
    QVERIFY(!Part("A")->IsVisible());
    Part("A")->SetVisibility(true);
    QCOMPARE(spy.toList(), QList<QVariantList>({{false}, {true}}));
    QCOMPARE(Journal(), Entries("about to change A \n changed A \n about to change A \n changed A"));
}

void tst_ZAXFeatObject::equalVisibilityChangesNothing()
{
    const ZAXProbeObserver observer(*m_container);
    const QSignalSpy spy(Part("A"), &ZAXFeatObject::VisibilityChanged);
    Part("A")->SetVisibility(true);
    QCOMPARE(Journal(), QStringList());
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatObject::writesLabelAndVisibility()
{
    PlainFeature feature(m_container.get());
    ZAXGeoStream plain(m_container.get());
    feature.Save(plain);
    QCOMPARE(plain.GetPayload().toHex(' '), QByteArray("ff ff ff ff 01"));
    feature.SetLabel(u"ø"_qs);
    feature.SetVisibility(false);
    ZAXGeoStream stream(m_container.get());
    feature.Save(stream);
    QCOMPARE(stream.GetPayload().toHex(' '), QByteArray("00 00 00 02 00 f8 00"));
}

void tst_ZAXFeatObject::readsLabelAndVisibility()
{
    PlainFeature feature(m_container.get());
    ZAXGeoStream stream(m_container.get(), QByteArray::fromHex("0000000200f800"));
    const QSignalSpy label(&feature, &ZAXFeatObject::LabelChanged);
    const QSignalSpy visibility(&feature, &ZAXFeatObject::VisibilityChanged);
    feature.Load(stream);
    QCOMPARE(feature.GetLabel(), u"ø"_qs);
    QVERIFY(!feature.IsVisible());
    QCOMPARE(label.toList(), QList<QVariantList>{{u"ø"_qs}});
    QCOMPARE(visibility.toList(), QList<QVariantList>{{false}});
    QVERIFY(stream.GetDataStream().atEnd());
}

void tst_ZAXFeatObject::messagesAreListedInTheirOrder()
{
    QCOMPARE(Part("A")->GetPropertyMessages(), Messages());
    Part("A")->SetPropertyMessage("length", ZAXFeatObject::Error, QStringLiteral("too long"));
    Part("A")->SetPropertyMessage("name", ZAXFeatObject::Warning, QStringLiteral("odd"));
    Part("A")->SetPropertyMessage("length", ZAXFeatObject::Information, QStringLiteral("in mm"));
    QCOMPARE(Part("A")->GetPropertyMessages(),
             Messages({{"length", ZAXFeatObject::Error, QStringLiteral("too long")},
                       {"name", ZAXFeatObject::Warning, QStringLiteral("odd")},
                       {"length", ZAXFeatObject::Information, QStringLiteral("in mm")}}));
    QCOMPARE(Part("B")->GetPropertyMessages(), Messages());
}

void tst_ZAXFeatObject::messagesAreListedByProperty()
{
    Part("A")->SetPropertyMessage("length", ZAXFeatObject::Error, QStringLiteral("too long"));
    Part("A")->SetPropertyMessage("name", ZAXFeatObject::Error, QStringLiteral("odd"));
    Part("A")->SetPropertyMessage("length", ZAXFeatObject::Error, QStringLiteral("crooked"));
    QCOMPARE(Part("A")->GetPropertyMessages("length"),
             Messages({{"length", ZAXFeatObject::Error, QStringLiteral("too long")},
                       {"length", ZAXFeatObject::Error, QStringLiteral("crooked")}}));
    QCOMPARE(Part("A")->GetPropertyMessages("width"), Messages());
}

void tst_ZAXFeatObject::sameMessageIsKeptOnce()
{
    for (int i = 0; i < 2; ++i) {
        Part("A")->SetPropertyMessage("length", ZAXFeatObject::Error, QStringLiteral("too long"));
        Part("A")->SetPropertyMessage("length", ZAXFeatObject::Warning, QStringLiteral("too long"));
        Part("A")->SetPropertyMessage("width", ZAXFeatObject::Error, QStringLiteral("too long"));
    }
    QCOMPARE(Part("A")->GetPropertyMessages().size(), 3);
}

void tst_ZAXFeatObject::updateResultClearsTheMessages()
{
    Part("A")->SetPropertyMessage("length", ZAXFeatObject::Error, QStringLiteral("too long"));
    Part("B")->SetPropertyMessage("length", ZAXFeatObject::Error, QStringLiteral("too long"));
    QVERIFY(Part("A")->UpdateResult());
    QCOMPARE(Part("A")->GetPropertyMessages(), Messages());
    QCOMPARE(Part("B")->GetPropertyMessages().size(), 1);
}

void tst_ZAXFeatObject::messageStatusesHaveTheirNumbers()
{
    QCOMPARE(int(ZAXFeatObject::NoMessage), 0);
    QCOMPARE(int(ZAXFeatObject::Information), 1);
    QCOMPARE(int(ZAXFeatObject::Warning), 2);
    QCOMPARE(int(ZAXFeatObject::Error), 3);
}

void tst_ZAXFeatObject::isValidParent_data()
{
    QTest::addColumn<const QMetaObject*>("parent");
    QTest::addColumn<const QMetaObject*>("child");
    QTest::addColumn<QList<QByteArray>>("allowed");
    QTest::addColumn<bool>("isValid");
    const auto* const part = &ZAXProbePart::staticMetaObject;
    const auto* const special = &ZAXProbeSpecialPart::staticMetaObject;
    const auto* const leaf = &ZAXProbeLeaf::staticMetaObject;
    const auto* const root = &ZAXProbeRoot::staticMetaObject;
    const auto* const folder = &ZAXFeatFolder::staticMetaObject;
    QTest::newRow("class is named") << part << part << QList<QByteArray>{"ZAXProbePart"} << true;
    QTest::newRow("base is named") << part << special << QList<QByteArray>{"ZAXProbePart"} << true;
    QTest::newRow("base of all is named") << part << special << QList<QByteArray>{"ZAXFeatObject"} << true;
    QTest::newRow("one of several is named") << part << part << QList<QByteArray>{"A", "ZAXProbePart"} << true;
    QTest::newRow("derived class is named") << part << part << QList<QByteArray>{"ZAXProbeSpecialPart"} << false;
    QTest::newRow("another class is named") << part << part << QList<QByteArray>{"ZAXProbeLeaf"} << false;
    QTest::newRow("part of the name") << part << part << QList<QByteArray>{"ZAXProbe"} << false;
    QTest::newRow("none is named") << part << part << QList<QByteArray>{} << false;
    QTest::newRow("parent is admitted") << part << leaf << QList<QByteArray>{"ZAXProbeLeaf"} << true;
    QTest::newRow("base of the parent is admitted") << special << leaf << QList<QByteArray>{"ZAXProbeLeaf"} << true;
    QTest::newRow("parent is not admitted") << root << leaf << QList<QByteArray>{"ZAXProbeLeaf"} << false;
    QTest::newRow("admitted but not named") << part << leaf << QList<QByteArray>{"ZAXProbePart"} << false;
    QTest::newRow("no parent is admitted") << part << root << QList<QByteArray>{"ZAXProbeRoot"} << false;
    QTest::newRow("folder as a child") << part << folder << QList<QByteArray>{} << true;
    QTest::newRow("folder as a child of a leaf") << leaf << folder << QList<QByteArray>{} << true;
    QTest::newRow("root is no plain folder") << part << &ZAXFeatRoot::staticMetaObject << QList<QByteArray>{} << false;
    QTest::newRow("folder as the parent") << folder << leaf << QList<QByteArray>{"ZAXProbeLeaf"} << false;
    QTest::newRow("no feature") << part << &QObject::staticMetaObject << QList<QByteArray>{"ZAXFeatObject"} << false;
}

void tst_ZAXFeatObject::isValidParent()
{
    QFETCH(const QMetaObject*, parent);
    QFETCH(const QMetaObject*, child);
    QFETCH(QList<QByteArray>, allowed);
    QFETCH(bool, isValid);
    QCOMPARE(ZAXFeatObject::IsValidParent(parent, child, allowed), isValid);
}

void tst_ZAXFeatObject::baseAllowsFeaturesOnly()
{
    const PlainFeature feature(m_container.get());
    QVERIFY(feature.IsChildAllowed(&ZAXProbePart::staticMetaObject));
    QVERIFY(feature.IsChildAllowed(&ZAXFeatFolder::staticMetaObject));
    QVERIFY(!feature.IsChildAllowed(&ZAXGeoGeometry::staticMetaObject));
    QVERIFY(!feature.IsChildAllowed(&ZAXProbeLeaf::staticMetaObject));
    QVERIFY(Part("A")->IsChildAllowed(&ZAXProbeLeaf::staticMetaObject));
}

void tst_ZAXFeatObject::baseAllowsTheUserEverything()
{
    QVERIFY(Part("A")->IsUserDeletable());
    QVERIFY(Part("A")->CanUserDuplicate());
    QCOMPARE(Part("A")->GetAllowedMoveActions(),
             ZAXFeatObject::MoveActions(ZAXFeatObject::MoveWithinParent | ZAXFeatObject::MoveToOtherParent));
}

void tst_ZAXFeatObject::eventsGoToQt()
{
    QEvent paint(QEvent::Paint);
    QEvent change(QEvent::ThreadChange);
    QVERIFY(!Part("A")->event(&paint));
    QVERIFY(Part("A")->event(&change));
}

void tst_ZAXFeatObject::childrenAreListedInOrder()
{
    QCOMPARE(Part("A")->GetChildren(), Features({Part("B"), Part("E")}));
    QCOMPARE(Part("B")->GetChildren(), Features({Part("C"), Part("D")}));
    QCOMPARE(Part("F")->GetChildren(), Features());
    QCOMPARE(Part("D")->GetParent(), Part("B"));
    QVERIFY(!Part("A")->GetParent());
}

void tst_ZAXFeatObject::allChildrenAreListedDepthFirst()
{
    QCOMPARE(Part("A")->GetAllChildren(), Features({Part("B"), Part("C"), Part("D"), Part("E")}));
    QCOMPARE(Part("F")->GetAllChildren(), Features());
}

void tst_ZAXFeatObject::dependentsPointIntoTheSubtree()
{
    QCOMPARE(Part("B")->GetAllDependents(), Features());
    Part("E")->partner.SetPointedObject(Part("B"), true);
    Part("F")->partner.SetPointedObject(Part("C"), true);
    QCOMPARE(Part("B")->GetAllDependents(), Features({Part("E"), Part("F")}));
    QCOMPARE(Part("C")->GetAllDependents(), Features{Part("F")});
    QCOMPARE(Part("A")->GetAllDependents(), Features{Part("F")});
    QCOMPARE(Part("F")->GetAllDependents(), Features());
}

void tst_ZAXFeatObject::dependentsOfDependentsDependToo()
{
    Part("D")->partner.SetPointedObject(Part("C"), true);
    Part("E")->partner.SetPointedObject(Part("D"), true);
    Part("F")->partner.SetPointedObject(Part("E"), true);
    Part("C")->partner.SetPointedObject(Part("F"), true);
    QCOMPARE(Part("C")->GetAllDependents(), Features({Part("D"), Part("E"), Part("F")}));
}

void tst_ZAXFeatObject::dependentIsListedOnce()
{
    Part("F")->partner.SetPointedObject(Part("B"), true);
    Part("F")->companions.Add(Part("B"), true);
    Part("F")->companions.Add(Part("B"), true);
    Part("F")->companions.Add(Part("C"), true);
    QCOMPARE(Part("B")->GetAllDependents(), Features{Part("F")});
}

void tst_ZAXFeatObject::featuresOfTheSubtreeAreNoDependents()
{
    Part("C")->partner.SetPointedObject(Part("B"), true);
    Part("B")->partner.SetPointedObject(Part("B"), true);
    Part("D")->partner.SetPointedObject(Part("C"), true);
    QCOMPARE(Part("B")->GetAllDependents(), Features());
}

void tst_ZAXFeatObject::listOfOwnChildrenMakesNoDependent()
{
    Part("A")->companions.Add(Part("B"), true);
    Part("A")->companions.Add(Part("E"), true);
    QCOMPARE(Part("B")->GetAllDependents(), Features());
    QCOMPARE(Part("E")->GetAllDependents(), Features());
}

void tst_ZAXFeatObject::listOfOtherFeaturesMakesADependent()
{
    Part("A")->companions.Add(Part("C"), true);
    Part("E")->companions.Add(Part("F"), true);
    QCOMPARE(Part("C")->GetAllDependents(), Features{Part("A")});
    QCOMPARE(Part("F")->GetAllDependents(), Features{Part("E")});
}

void tst_ZAXFeatObject::pointerAtAnOwnChildMakesADependent()
{
    Part("A")->partner.SetPointedObject(Part("B"), true);
    QCOMPARE(Part("B")->GetAllDependents(), Features{Part("A")});
}

void tst_ZAXFeatObject::removedFeatureIsNoDependent()
{
    Part("F")->partner.SetPointedObject(Part("B"), true);
    Part("F")->AddReference();
    Part("F")->Remove();
    QCOMPARE(Part("B")->GetAllDependents(), Features());
    Part("B")->Remove();
    QVERIFY(!Part("F")->GetPartner());
    Part("F")->RemoveReference();
}

void tst_ZAXFeatObject::removeAnnouncesTheWholeFeature()
{
    QString seen;
    connect(Part("A"), &ZAXFeatObject::ChildRemoved, this, [&](ZAXFeatObject* child) {
        const auto* const part = qobject_cast<ZAXProbePart*>(child);
        seen = QStringLiteral("%1 of class %2 with %3 children")
                   .arg(part->GetName(), QString::fromUtf8(part->metaObject()->className()),
                        QString::number(part->GetChildren().size()));
        QVERIFY(!part->GetParent());
        QCOMPARE(Part("A")->GetChildren(), Features{Part("E")});
    });
    Part("B")->Remove();
    QCOMPARE(seen, QStringLiteral("B of class ZAXProbePart with 2 children"));
}

void tst_ZAXFeatObject::removeKeepsItsOrder()
{
    Part("F")->partner.SetPointedObject(Part("C"), true);
    const ZAXProbeObserver observer(*m_container);
    connect(Part("A"), &ZAXFeatObject::ChildRemoved, this,
            [] { ZAXProbeJournal::Note(QStringLiteral("ChildRemoved")); });
    Part("B")->Remove();
    QCOMPARE(Journal(), Entries("about to change F \n changed F \n"
                                "Cleanup B \n Cleanup C \n Cleanup D \n"
                                "B went \n"
                                "ChildRemoved \n"
                                "destroyed D \n destroyed C \n destroyed B"));
}

void tst_ZAXFeatObject::removeReleasesPointersIntoTheSubtree()
{
    Part("F")->partner.SetPointedObject(Part("B"), true);
    Part("E")->partner.SetPointedObject(Part("D"), true);
    Part("B")->Remove();
    QVERIFY(!Part("F")->GetPartner());
    QVERIFY(!Part("E")->GetPartner());
}

void tst_ZAXFeatObject::removeTakesItemsOutOfLists()
{
    Part("F")->companions.Add(Part("B"), true);
    Part("F")->companions.Add(Part("E"), true);
    Part("F")->companions.Add(Part("D"), true);
    Part("A")->companions.Add(Part("B"), true);
    const QSignalSpy removed(Part("F"), &ZAXProbePart::CompanionRemoved);
    const QSignalSpy changed(Part("F"), &ZAXProbePart::CompanionsChanged);
    Part("B")->Remove();
    QCOMPARE(Part("F")->GetCompanions(), QList<ZAXProbePart*>{Part("E")});
    QCOMPARE(Part("A")->GetCompanions(), QList<ZAXProbePart*>());
    QCOMPARE(removed.count(), 2);
    QCOMPARE(changed.count(), 2);
}

void tst_ZAXFeatObject::removeLeavesPointersWithinTheSubtree()
{
    Part("B")->companions.Add(Part("C"), true);
    Part("C")->partner.SetPointedObject(Part("B"), true);
    const QSignalSpy removed(Part("B"), &ZAXProbePart::CompanionRemoved);
    QList<ZAXProbePart*> companions;
    connect(Part("A"), &ZAXFeatObject::ChildRemoved, this, [&] { companions = Part("B")->GetCompanions(); });
    Part("B")->Remove();
    QCOMPARE(removed.count(), 0);
    QCOMPARE(companions, QList<ZAXProbePart*>{Part("C")});
}

void tst_ZAXFeatObject::removeAtTheTop()
{
    const ZAXProbeObserver observer(*m_container);
    Part("F")->Remove();
    QCOMPARE(m_container->GetRoots(), Features{Part("A")});
    QCOMPARE(Journal(), Entries("Cleanup F \n F went \n destroyed F"));
    Part("A")->Remove();
    QCOMPARE(m_container->GetRoots(), Features());
    QCOMPARE(m_container->GetGeometries(), QList<ZAXGeoGeometry*>());
}

void tst_ZAXFeatObject::removeOfAFeatureThatWasNeverAnnounced()
{
    const QSignalSpy spy(Part("F"), &ZAXFeatObject::ChildRemoved);
    auto* const part = new ZAXProbePart(Part("F"));
    part->Remove();
    QCOMPARE(spy.count(), 0);
    QCOMPARE(Part("F")->GetChildren(), Features());
}

void tst_ZAXFeatObject::removeWithoutContainer()
{
    auto* const part = new ZAXProbePart(static_cast<ZAXFeatContainer*>(nullptr));
    ZAXProbePart* const child = AddPart(part, "child");
    const QSignalSpy spy(part, &ZAXFeatObject::ChildRemoved);
    Journal();
    child->Remove();
    QCOMPARE(spy.count(), 1);
    part->Remove();
    QCOMPARE(Journal(), Entries("Cleanup child \n destroyed child \n Cleanup \n destroyed"));
}

void tst_ZAXFeatObject::secondRemoveDoesNothing()
{
    const QSignalSpy spy(Part("A"), &ZAXFeatObject::ChildRemoved);
    connect(Part("A"), &ZAXFeatObject::ChildRemoved, this, [](ZAXFeatObject* child) { child->Remove(); });
    Part("E")->AddReference();
    Part("E")->Remove();
    Part("E")->Remove();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(Journal(), Entries("Cleanup E"));
    Part("E")->RemoveReference();
    QCOMPARE(Journal(), Entries("destroyed E"));
}

void tst_ZAXFeatObject::heldFeatureOutlivesItsRemoval()
{
    Part("B")->AddReference();
    Part("B")->Remove();
    QCOMPARE(Journal(), Entries("Cleanup B \n Cleanup C \n Cleanup D \n destroyed D \n destroyed C"));
    QCOMPARE(Part("B")->GetName(), QStringLiteral("B"));
    QVERIFY(!Part("B")->GetParent());
    QCOMPARE(Part("B")->GetChildren(), Features());
    QCOMPARE(Part("A")->GetChildren(), Features{Part("E")});
    QCOMPARE(m_container->GetRoots(), Features({Part("A"), Part("F")}));
    Part("B")->RemoveReference();
    QCOMPARE(Journal(), Entries("destroyed B"));
}

void tst_ZAXFeatObject::heldChildOutlivesTheRemovalOfItsParent()
{
    Part("C")->AddReference();
    Part("B")->Remove();
    QCOMPARE(Journal(), Entries("Cleanup B \n Cleanup C \n Cleanup D \n destroyed D \n destroyed B"));
    QVERIFY(!Part("C")->GetParent());
    QCOMPARE(m_container->GetRoots(), Features({Part("A"), Part("F")}));
    Part("C")->RemoveReference();
    QCOMPARE(Journal(), Entries("destroyed C"));
}

void tst_ZAXFeatObject::removedFeatureIsNotFound()
{
    const ZAXGeoGeometryRef parent(Part("B"));
    const ZAXGeoGeometryRef child(Part("C"));
    Part("C")->AddReference();
    Part("B")->Remove();
    QVERIFY(!m_container->GetGeometryByRef(parent));
    QVERIFY(!m_container->GetGeometryByRef(child));
    Part("C")->RemoveReference();
}

void tst_ZAXFeatObject::slotThatThrowsBeforeTheRemovalLeavesTheFeature()
{
    Part("F")->companions.Add(Part("B"), true);
    const auto connection = connect(Part("F"), &ZAXProbePart::CompanionRemoved, this,
                                    [] { throw ZAXSysException(QStringLiteral("from a slot")); });
    QCOMPARE(MessageOf([&] { Part("B")->Remove(); }), QStringLiteral("from a slot"));
    QCOMPARE(Part("A")->GetChildren(), Features({Part("B"), Part("E")}));
    QCOMPARE(Journal(), QStringList());
    disconnect(connection);
    QVERIFY(Part("B")->MoveTo(Part("F"), 0));
    Journal();
    Part("B")->Remove();
    QCOMPARE(Part("F")->GetChildren(), Features());
    QCOMPARE(Journal().last(), QStringLiteral("destroyed B"));
}

void tst_ZAXFeatObject::cleanupThatThrowsLeavesTheFeature()
{
    m_journal->FailAt("Cleanup C");
    QCOMPARE(MessageOf([&] { Part("B")->Remove(); }), QStringLiteral("The probe fails: Cleanup C."));
    QCOMPARE(Part("A")->GetChildren(), Features({Part("B"), Part("E")}));
    Part("B")->Remove();
    QCOMPARE(Part("A")->GetChildren(), Features{Part("E")});
}

void tst_ZAXFeatObject::slotThatThrowsBehindTheRemovalKeepsNothing()
{
    const ZAXGeoGeometryRef reference(Part("B"));
    connect(Part("A"), &ZAXFeatObject::ChildRemoved, this,
            [] { throw ZAXSysException(QStringLiteral("from a slot")); });
    QCOMPARE(MessageOf([&] { Part("B")->Remove(); }), QStringLiteral("from a slot"));
    QCOMPARE(Part("A")->GetChildren(), Features{Part("E")});
    QVERIFY(!m_container->GetGeometryByRef(reference));
    QCOMPARE(Journal().last(), QStringLiteral("destroyed B"));
    QCOMPARE(ZAXFeatObjectPrivate::Get(*Part("A")).openChanges, 0);
}

void tst_ZAXFeatObject::deletionAnnouncesNothing()
{
    const QSignalSpy spy(Part("A"), &ZAXFeatObject::ChildRemoved);
    delete Part("E");
    QCOMPARE(spy.count(), 0);
    QCOMPARE(Part("A")->GetChildren(), Features{Part("B")});
    QCOMPARE(Journal(), Entries("destroyed E"));
}

void tst_ZAXFeatObject::deletionTakesTheChildrenAlong()
{
    const ZAXGeoGeometryRef child(Part("C"));
    delete Part("B");
    QCOMPARE(Journal(), Entries("destroyed B \n destroyed D \n destroyed C"));
    QVERIFY(!m_container->GetGeometryByRef(child));
}

void tst_ZAXFeatObject::deletionLeavesNoDanglingPointer()
{
    Part("F")->partner.SetPointedObject(Part("B"), true);
    Part("E")->partner.SetPointedObject(Part("C"), true);
    Part("E")->companions.Add(Part("D"), true);
    Part("B")->partner.SetPointedObject(Part("F"), true);
    const QSignalSpy spy(Part("E"), &ZAXProbePart::CompanionsChanged);
    delete Part("B");
    QVERIFY(!Part("F")->GetPartner());
    QVERIFY(!Part("E")->GetPartner());
    QCOMPARE(Part("E")->GetCompanions(), QList<ZAXProbePart*>{nullptr});
    QCOMPARE(Part("F")->GetAllDependents(), Features());
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXFeatObject::moveChangesThePlace_data()
{
    QTest::addColumn<QByteArray>("feature");
    QTest::addColumn<QByteArray>("parent");
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArrayList>("children");
    QTest::newRow("first") << QByteArray("E") << QByteArray("B") << 0 << QByteArrayList{"E", "C", "D"};
    QTest::newRow("between") << QByteArray("E") << QByteArray("B") << 1 << QByteArrayList{"C", "E", "D"};
    QTest::newRow("last") << QByteArray("E") << QByteArray("B") << 2 << QByteArrayList{"C", "D", "E"};
    QTest::newRow("behind the last") << QByteArray("E") << QByteArray("B") << 3 << QByteArrayList{"C", "D", "E"};
    QTest::newRow("far out") << QByteArray("E") << QByteArray("B") << 1000 << QByteArrayList{"C", "D", "E"};
    QTest::newRow("negative") << QByteArray("E") << QByteArray("B") << -1 << QByteArrayList{"C", "D", "E"};
    QTest::newRow("to no siblings") << QByteArray("E") << QByteArray("F") << 0 << QByteArrayList{"E"};
    QTest::newRow("forward in place") << QByteArray("C") << QByteArray("B") << 1 << QByteArrayList{"D", "C"};
    QTest::newRow("backward in place") << QByteArray("D") << QByteArray("B") << 0 << QByteArrayList{"D", "C"};
    QTest::newRow("to its own place") << QByteArray("C") << QByteArray("B") << 0 << QByteArrayList{"C", "D"};
    QTest::newRow("down") << QByteArray("F") << QByteArray("C") << 0 << QByteArrayList{"F"};
    QTest::newRow("up") << QByteArray("C") << QByteArray("A") << 1 << QByteArrayList{"B", "C", "E"};
}

void tst_ZAXFeatObject::moveChangesThePlace()
{
    QFETCH(QByteArray, feature);
    QFETCH(QByteArray, parent);
    QFETCH(int, index);
    QFETCH(QByteArrayList, children);
    QVERIFY(Part(feature)->MoveTo(Part(parent), index));
    QByteArrayList names;
    const auto moved = Part(parent)->GetChildren();
    for (const ZAXFeatObject* child : moved)
        names.append(NameOf(child).toUtf8());
    QCOMPARE(names, children);
    QCOMPARE(Part(feature)->GetParent(), Part(parent));
}

void tst_ZAXFeatObject::moveToAnotherParentIsAnnounced()
{
    for (ZAXProbePart* part : {Part("B"), Part("F")}) {
        connect(part, &ZAXFeatObject::ChildRemoved, this, [part](const ZAXFeatObject* child) {
            ZAXProbeJournal::Note(NameOf(part) + u" lost "_qs + NameOf(child) + u" now in "_qs +
                                  NameOf(child->GetParent()));
        });
        connect(part, &ZAXFeatObject::ChildAdded, this, [part](const ZAXFeatObject* child) {
            ZAXProbeJournal::Note(NameOf(part) + u" got "_qs + NameOf(child));
        });
    }
    QVERIFY(Part("D")->MoveTo(Part("F"), 0));
    QCOMPARE(Journal(), Entries("B lost D now in F \n F got D \n PostMove from 1 of B: D"));
}

void tst_ZAXFeatObject::moveWithinTheParentIsNotAnnounced()
{
    const QSignalSpy added(Part("B"), &ZAXFeatObject::ChildAdded);
    const QSignalSpy removed(Part("B"), &ZAXFeatObject::ChildRemoved);
    QVERIFY(Part("D")->MoveTo(Part("B"), 0));
    QCOMPARE(added.count(), 0);
    QCOMPARE(removed.count(), 0);
    QCOMPARE(Journal(), Entries("PostMove from 1 of B: D"));
}

void tst_ZAXFeatObject::moveIsOneStep()
{
    const ZAXProbeObserver observer(*m_container);
    QVERIFY(Part("D")->MoveTo(Part("F"), 0));
    QCOMPARE(Journal(), Entries("D moved \n"
                                "PostMove from 1 of B: D"));
    QVERIFY(Part("C")->MoveTo(Part("B"), 0));
    QCOMPARE(Journal(), Entries("PostMove from 0 of B: C"));
}

void tst_ZAXFeatObject::moveTakesTheSubtreeAlong()
{
    QVERIFY(Part("B")->MoveTo(Part("F"), 0));
    QCOMPARE(Part("F")->GetAllChildren(), Features({Part("B"), Part("C"), Part("D")}));
    QCOMPARE(Part("A")->GetAllChildren(), Features{Part("E")});
}

void tst_ZAXFeatObject::moveFromTheTop()
{
    QVERIFY(Part("F")->MoveTo(Part("A"), 0));
    QCOMPARE(m_container->GetRoots(), Features{Part("A")});
    QCOMPARE(Part("A")->GetChildren(), Features({Part("F"), Part("B"), Part("E")}));
    QCOMPARE(Journal(), Entries("PostMove from 1 of top: F"));
}

void tst_ZAXFeatObject::moveIsRefused_data()
{
    QTest::addColumn<QByteArray>("feature");
    QTest::addColumn<QByteArray>("parent");
    QTest::newRow("no parent") << QByteArray("B") << QByteArray("none");
    QTest::newRow("itself") << QByteArray("B") << QByteArray("B");
    QTest::newRow("its child") << QByteArray("A") << QByteArray("B");
    QTest::newRow("its grandchild") << QByteArray("A") << QByteArray("C");
    QTest::newRow("another document") << QByteArray("B") << QByteArray("stranger");
    QTest::newRow("parent that does not allow it") << QByteArray("leaf") << QByteArray("root");
    QTest::newRow("child that does not admit it") << QByteArray("root") << QByteArray("A");
    QTest::newRow("parent that allows nothing") << QByteArray("B") << QByteArray("leaf");
}

void tst_ZAXFeatObject::moveIsRefused()
{
    QFETCH(QByteArray, feature);
    QFETCH(QByteArray, parent);
    ZAXFeatContainer other;
    ZAXProbePart* const stranger = AddPart(other, "stranger");
    auto* const leaf = new ZAXProbeLeaf(Part("A"));
    auto* const root = new ZAXProbeRoot(m_container.get());
    QHash<QByteArray, ZAXFeatObject*> features{{"leaf", leaf}, {"root", root}, {"stranger", stranger}};
    for (auto part = m_parts.cbegin(); part != m_parts.cend(); ++part)
        features.insert(part.key(), part.value());
    const ZAXProbeObserver observer(*m_container);
    Journal();
    QVERIFY(!features.value(feature)->MoveTo(features.value(parent), 0));
    QCOMPARE(Journal(), QStringList());
    QCOMPARE(m_container->GetRoots(), Features({Part("A"), Part("F"), root}));
    QCOMPARE(Part("A")->GetAllChildren(), Features({Part("B"), Part("C"), Part("D"), Part("E"), leaf}));
    QCOMPARE(stranger->GetChildren(), Features());
}

void tst_ZAXFeatObject::moveOfARemovedFeatureIsRefused()
{
    Part("E")->AddReference();
    Part("E")->Remove();
    QVERIFY(!Part("E")->MoveTo(Part("A"), 0));
    QVERIFY(!Part("F")->MoveTo(Part("E"), 0));
    Part("E")->RemoveReference();
    QCOMPARE(m_container->GetRoots(), Features({Part("A"), Part("F")}));
}

void tst_ZAXFeatObject::slotMayRemoveTheFeatureThatMoves()
{
    connect(Part("B"), &ZAXFeatObject::ChildRemoved, this, [](ZAXFeatObject* child) { child->Remove(); });
    const QSignalSpy added(Part("F"), &ZAXFeatObject::ChildAdded);
    QVERIFY(Part("D")->MoveTo(Part("F"), 0));
    QCOMPARE(added.count(), 0);
    QCOMPARE(Part("F")->GetChildren(), Features());
    // The move is still at work with the feature when the slot returns.
    QCOMPARE(Journal(), Entries("Cleanup D"));
    QCoreApplication::processEvents();
    QCOMPARE(Journal(), Entries("destroyed D"));
}

void tst_ZAXFeatObject::emptyLabelIsStoredAsNone()
{
    const QByteArray before = Part("D")->GetCurrentState();
    Part("D")->SetLabel(u"x"_qs);
    Part("D")->SetLabel(u""_qs);
    QCOMPARE(Part("D")->GetCurrentState(), before);
}

QTEST_GUILESS_MAIN(tst_ZAXFeatObject)
#include "tst_ZAXFeatObject.moc"
