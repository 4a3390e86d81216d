#include "ZAXHostDuplicator.h"

#include "ZAXFeatFolder.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXHostDocument.h"
#include "ZAXProbeFeatures.h"
#include "ZAXProbeFileSystem.h"
#include "ZAXProbeJournal.h"

#include <QSignalSpy>
#include <QTest>

using Features = QList<ZAXFeatObject*>;
using Parts = QList<ZAXProbePart*>;

/// Puts itself into the list of its parent when it is a copy, and then fails.
class FailingCopy : public ZAXProbePart
{
    Q_OBJECT

public:
    Q_INVOKABLE FailingCopy(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
    }
    explicit FailingCopy(ZAXFeatObject* parent) : ZAXProbePart(parent) {}
    void PostDuplicate(const ZAXFeatObject*, const ZAXFeatObject*) override
    {
        auto* const parent = qobject_cast<ZAXProbePart*>(GetParent());
        parent->companions.Add(this, false);
        parent->partner.SetPointedObject(this, false);
        throw ZAXSysException(QStringLiteral("no copy"));
    }
};

class tst_ZAXHostDuplicator : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void copyStandsBehindItsSource();
    void copyAtTheTopStandsBehindItsSource();
    void latestCopyStandsNextToTheSource();
    void copyHasTheWholeSubtreeWithIdsOfItsOwn();
    void copyHasTheStateOfItsSource();
    void referencesWithinPointIntoTheCopy();
    void referencesOutsideStay();
    void sourceAndOthersKeepTheirReferences();
    void copyIsIndependentOfItsSource();
    void copyNeedsNoRegistration();
    void stepsComeInTheirOrder();
    void everythingIsDoneWhenTheCopyIsAnnounced();
    void childrenOfTheCopyAreAnnouncedToo();
    void copiesAreNeverInitialized();
    void failureLeavesNothing_data();
    void failureLeavesNothing();
    void classThatCannotBeRecreatedLeavesNothing();
    void failureLeavesNoItemInAList();
    void copyThatASlotRemovesIsNotReturned();
    void exceptionOfASlotLeavesTheCopy();
    void duplicationIsAChange();
    void duplicatedDocumentIsReadBack();

private:
    ZAXProbePart* Part(const char* name) { return m_parts.value(name); }
    ZAXProbePart* Duplicate(const char* name)
    {
        return qobject_cast<ZAXProbePart*>(ZAXHostDuplicator::Duplicate(Part(name)));
    }
    static ZAXProbePart* ChildOf(const ZAXFeatObject* parent, int index)
    {
        return qobject_cast<ZAXProbePart*>(parent->GetChildren().at(index));
    }

    std::unique_ptr<ZAXProbeRegistration> m_registration;
    std::unique_ptr<ZAXProbeJournal> m_journal;
    std::unique_ptr<ZAXHostDocument> m_document;
    /// The tree A (B (C, D), E), F with ids from 1; B is duplicated, with pointers within it and out of and into it.
    QHash<QByteArray, ZAXProbePart*> m_parts;
};

void tst_ZAXHostDuplicator::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    m_registration = std::make_unique<ZAXProbeRegistration>();
    m_document = std::make_unique<ZAXHostDocument>();
    m_parts["A"] = AddPart(*m_document->GetContainer(), "A");
    m_parts["B"] = AddPart(Part("A"), "B");
    m_parts["C"] = AddPart(Part("B"), "C");
    m_parts["D"] = AddPart(Part("B"), "D");
    m_parts["E"] = AddPart(Part("A"), "E");
    m_parts["F"] = AddPart(*m_document->GetContainer(), "F");
    Part("B")->SetLabel(QStringLiteral("Bracket"));
    Part("B")->length.SetValue(1.0 / 3.0, true);
    Part("B")->SetVisibility(false);
    Part("B")->companions.Add(Part("C"), true);
    Part("B")->companions.Add(Part("F"), true);
    Part("B")->companions.Add(nullptr, true);
    Part("C")->partner.SetPointedObject(Part("F"), true);
    Part("D")->partner.SetPointedObject(Part("C"), true);
    Part("E")->partner.SetPointedObject(Part("B"), true);
    Part("F")->companions.Add(Part("B"), true);
    m_journal = std::make_unique<ZAXProbeJournal>();
}

void tst_ZAXHostDuplicator::cleanup()
{
    m_journal.reset();
    m_document.reset();
    m_parts.clear();
    m_registration.reset();
}

void tst_ZAXHostDuplicator::copyStandsBehindItsSource()
{
    ZAXFeatObject* const copy = ZAXHostDuplicator::Duplicate(Part("B"));
    QVERIFY(copy);
    QCOMPARE(copy->GetParent(), Part("A"));
    QCOMPARE(Part("A")->GetChildren(), Features({Part("B"), copy, Part("E")}));
    QCOMPARE(m_document->GetContainer()->GetRoots(), Features({Part("A"), Part("F")}));
}

void tst_ZAXHostDuplicator::copyAtTheTopStandsBehindItsSource()
{
    ZAXFeatObject* const copy = ZAXHostDuplicator::Duplicate(Part("A"));
    QCOMPARE(m_document->GetContainer()->GetRoots(), Features({Part("A"), copy, Part("F")}));
    QVERIFY(!copy->GetParent());
    QCOMPARE(copy->GetAllChildren().size(), 4);
}

void tst_ZAXHostDuplicator::latestCopyStandsNextToTheSource()
{
    ZAXFeatObject* const first = ZAXHostDuplicator::Duplicate(Part("E"));
    ZAXFeatObject* const second = ZAXHostDuplicator::Duplicate(Part("E"));
    QCOMPARE(Part("A")->GetChildren(), Features({Part("B"), Part("E"), second, first}));
}

void tst_ZAXHostDuplicator::copyHasTheWholeSubtreeWithIdsOfItsOwn()
{
    const ZAXProbePart* const copy = Duplicate("B");
    QCOMPARE(copy->metaObject(), &ZAXProbePart::staticMetaObject);
    QCOMPARE(copy->GetAllChildren().size(), 2);
    QCOMPARE(ChildOf(copy, 0)->GetName(), QStringLiteral("C"));
    QCOMPARE(ChildOf(copy, 1)->GetName(), QStringLiteral("D"));
    QCOMPARE(copy->GetId(), quint64(7));
    QCOMPARE(ChildOf(copy, 0)->GetId(), quint64(8));
    QCOMPARE(ChildOf(copy, 1)->GetId(), quint64(9));
    QCOMPARE(m_document->GetContainer()->GetGeometries().size(), 9);
}

void tst_ZAXHostDuplicator::copyHasTheStateOfItsSource()
{
    const ZAXProbePart* const copy = Duplicate("B");
    QCOMPARE(copy->GetName(), QStringLiteral("B"));
    QCOMPARE(copy->GetLabel(), QStringLiteral("Bracket"));
    QCOMPARE(copy->length.GetValue(), 1.0 / 3.0);
    QVERIFY(!copy->IsVisible());
}

void tst_ZAXHostDuplicator::referencesWithinPointIntoTheCopy()
{
    const ZAXProbePart* const copy = Duplicate("B");
    QCOMPARE(copy->GetCompanions().constFirst(), ChildOf(copy, 0));
    QCOMPARE(ChildOf(copy, 1)->GetPartner(), ChildOf(copy, 0));
}

void tst_ZAXHostDuplicator::referencesOutsideStay()
{
    const ZAXProbePart* const copy = Duplicate("B");
    QCOMPARE(copy->GetCompanions(), Parts({ChildOf(copy, 0), Part("F"), nullptr}));
    QCOMPARE(ChildOf(copy, 0)->GetPartner(), Part("F"));
}

void tst_ZAXHostDuplicator::sourceAndOthersKeepTheirReferences()
{
    Duplicate("B");
    QCOMPARE(Part("B")->GetCompanions(), Parts({Part("C"), Part("F"), nullptr}));
    QCOMPARE(Part("C")->GetPartner(), Part("F"));
    QCOMPARE(Part("D")->GetPartner(), Part("C"));
    QCOMPARE(Part("E")->GetPartner(), Part("B"));
    QCOMPARE(Part("F")->GetCompanions(), Parts{Part("B")});
}

void tst_ZAXHostDuplicator::copyIsIndependentOfItsSource()
{
    ZAXProbePart* const copy = Duplicate("B");
    Part("B")->Remove();
    QCOMPARE(copy->GetCompanions(), Parts({ChildOf(copy, 0), Part("F"), nullptr}));
    QCOMPARE(ChildOf(copy, 1)->GetPartner(), ChildOf(copy, 0));
}

void tst_ZAXHostDuplicator::copyNeedsNoRegistration()
{
    m_registration.reset();
    QVERIFY(Duplicate("B"));
}

void tst_ZAXHostDuplicator::stepsComeInTheirOrder()
{
    connect(Part("A"), &ZAXFeatObject::ChildAdded, this, [] { ZAXProbeJournal::Note(QStringLiteral("ChildAdded")); });
    Duplicate("B");
    QCOMPARE(m_journal->Take(),
             Entries("recreated \n recreated \n recreated \n"
                     "BeginStateLoad \n Load B \n BeginStateLoad \n Load C \n BeginStateLoad \n Load D \n"
                     "InitializeNonStreamed B \n InitializeNonStreamed C \n InitializeNonStreamed D \n"
                     "EndStateLoad B \n EndStateLoad C \n EndStateLoad D \n"
                     "PostDuplicate of 2 with 2 as B \n PostDuplicate of 3 with 2 as C \n"
                     "PostDuplicate of 4 with 2 as D \n"
                     "ChildAdded"));
}

void tst_ZAXHostDuplicator::everythingIsDoneWhenTheCopyIsAnnounced()
{
    int announcements = 0;
    connect(Part("A"), &ZAXFeatObject::ChildAdded, this, [&](ZAXFeatObject* child) {
        const auto* const copy = qobject_cast<ZAXProbePart*>(child);
        ++announcements;
        QVERIFY(copy);
        QCOMPARE(copy->GetAllChildren().size(), 2);
        QCOMPARE(copy->GetCompanions().constFirst(), ChildOf(copy, 0));
        QCOMPARE(Part("A")->GetChildren(), Features({Part("B"), child, Part("E")}));
    });
    Duplicate("B");
    QCOMPARE(announcements, 1);
}

void tst_ZAXHostDuplicator::childrenOfTheCopyAreAnnouncedToo()
{
    QStringList announced;
    connect(Part("A"), &ZAXFeatObject::ChildAdded, this, [&](ZAXFeatObject* copy) {
        announced.append(u"A gets "_qs + NameOf(copy));
        connect(copy, &ZAXFeatObject::ChildAdded, this,
                [&](ZAXFeatObject* child) { announced.append(u"copy gets "_qs + NameOf(child)); });
    });
    Duplicate("B");
    QCOMPARE(announced, Entries("A gets B \n copy gets C \n copy gets D"));
}

void tst_ZAXHostDuplicator::copiesAreNeverInitialized()
{
    ZAXProbePart* const copy = Duplicate("B");
    const QSignalSpy spy(Part("A"), &ZAXFeatObject::ChildAdded);
    ZAXFeatLastSavedStore::GetCurrent().SetValue("ZAXProbePart", "length", 99.0);
    copy->Initialize();
    QCOMPARE(copy->length.GetValue(), 1.0 / 3.0);
    QCOMPARE(spy.count(), 0);
}

void tst_ZAXHostDuplicator::failureLeavesNothing_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::newRow("construction") << QByteArray("recreated");
    QTest::newRow("start of the load") << QByteArray("BeginStateLoad");
    QTest::newRow("load of the top") << QByteArray("Load B");
    QTest::newRow("load of a child") << QByteArray("Load D");
    QTest::newRow("unstreamed part") << QByteArray("InitializeNonStreamed C");
    QTest::newRow("end of the load") << QByteArray("EndStateLoad D");
    QTest::newRow("work behind the duplication, top") << QByteArray("PostDuplicate of 2 with 2 as B");
    QTest::newRow("work behind the duplication, last") << QByteArray("PostDuplicate of 4 with 2 as D");
}

void tst_ZAXHostDuplicator::failureLeavesNothing()
{
    QFETCH(QByteArray, entry);
    const ZAXProbeFolder folder;
    QVERIFY(m_document->SaveAs(folder.PathOf("job.zax")));
    const QSignalSpy added(Part("A"), &ZAXFeatObject::ChildAdded);
    const QSignalSpy removed(Part("A"), &ZAXFeatObject::ChildRemoved);
    const auto dependents = Part("F")->GetAllDependents();
    m_journal->FailAt(entry);
    QCOMPARE(MessageOf([&] { Duplicate("B"); }), QStringLiteral("The probe fails: %1.").arg(QString::fromUtf8(entry)));
    QCOMPARE(Part("A")->GetChildren(), Features({Part("B"), Part("E")}));
    QCOMPARE(m_document->GetContainer()->GetRoots(), Features({Part("A"), Part("F")}));
    QCOMPARE(m_document->GetContainer()->GetGeometries().size(), 6);
    QCOMPARE(Part("F")->GetAllDependents(), dependents);
    QCOMPARE(added.count(), 0);
    QCOMPARE(removed.count(), 0);
    QVERIFY(!m_document->IsModified());
    QVERIFY(Duplicate("B"));
}

void tst_ZAXHostDuplicator::classThatCannotBeRecreatedLeavesNothing()
{
    auto* const child = new ZAXProbeUncreatable(m_document->GetContainer(), Part("B"), 0);
    child->Initialize();
    QCOMPARE(MessageOf([&] { Duplicate("B"); }), QStringLiteral("The class ZAXProbeUncreatable cannot be re-created."));
    QCOMPARE(Part("A")->GetChildren(), Features({Part("B"), Part("E")}));
    QCOMPARE(m_document->GetContainer()->GetGeometries().size(), 7);
}

void tst_ZAXHostDuplicator::failureLeavesNoItemInAList()
{
    auto* const source = new FailingCopy(Part("A"));
    source->Initialize();
    QCOMPARE(MessageOf([&] { ZAXHostDuplicator::Duplicate(source); }), QStringLiteral("no copy"));
    QCOMPARE(Part("A")->GetCompanions(), Parts());
    QVERIFY(!Part("A")->GetPartner());
    QCOMPARE(Part("A")->GetChildren(), Features({Part("B"), Part("E"), source}));
}

void tst_ZAXHostDuplicator::copyThatASlotRemovesIsNotReturned()
{
    connect(Part("A"), &ZAXFeatObject::ChildAdded, this, [](ZAXFeatObject* child) { child->Remove(); });
    QVERIFY(!ZAXHostDuplicator::Duplicate(Part("B")));
    QCOMPARE(Part("A")->GetChildren(), Features({Part("B"), Part("E")}));
    QCOMPARE(m_document->GetContainer()->GetGeometries().size(), 6);
}

void tst_ZAXHostDuplicator::exceptionOfASlotLeavesTheCopy()
{
    connect(Part("A"), &ZAXFeatObject::ChildAdded, this, [] { throw ZAXSysException(QStringLiteral("from a slot")); });
    QCOMPARE(MessageOf([&] { Duplicate("B"); }), QStringLiteral("from a slot"));
    QCOMPARE(Part("A")->GetChildren().size(), 3);
    QCOMPARE(Part("A")->GetChildren().at(1)->GetAllChildren().size(), 2);
    QCOMPARE(ZAXFeatObjectPrivate::Get(*Part("A")).openChanges, 0);
}

void tst_ZAXHostDuplicator::duplicationIsAChange()
{
    const ZAXProbeFolder folder;
    QVERIFY(m_document->SaveAs(folder.PathOf("job.zax")));
    Duplicate("B");
    QVERIFY(m_document->IsModified());
}

void tst_ZAXHostDuplicator::duplicatedDocumentIsReadBack()
{
    const ZAXProbeFolder folder;
    Duplicate("A");
    QVERIFY(m_document->SaveAs(folder.PathOf("job.zax")));
    ZAXHostDocument document;
    QCOMPARE(document.Open(folder.PathOf("job.zax")).GetMessage(), QString());
    QCOMPARE(document.Encode(), m_document->Encode());
}

QTEST_GUILESS_MAIN(tst_ZAXHostDuplicator)
#include "tst_ZAXHostDuplicator.moc"
