#include "ZAXFeatObjectProperty.h"

#include "ZAXFeatObjectPrivate.h"
#include "ZAXProbeFeatures.h"
#include "ZAXProbeJournal.h"

#include <QTest>

namespace {

/// May point at everything, wherever it lives.
class WideProperty : public ZAXFeatObjectProperty<ZAXProbePart>
{
public:
    using ZAXFeatObjectProperty<ZAXProbePart>::ZAXFeatObjectProperty;
    bool CanExternalReference(ZAXFeatObject* object) override
    {
        asked.append(object);
        return true;
    }

    QList<ZAXFeatObject*> asked;
};

} // namespace

class tst_ZAXFeatObjectProperty : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void pointsAtNothingAtFirst();
    void isBoundToNoMetaProperty();
    void isInputAsItWasMade();
    void belongsToNoList();
    void pointsAtWhatItIsGiven();
    void pointingIsOneChange();
    void silentPointingIsAChange();
    void pointingWithinAnOpenChangeOpensNone();
    void acceptsADerivedClass();
    void refusesAnotherClass();
    void refusesAnotherDocument();
    void mayAdmitAnotherDocument();
    void ownDocumentIsNotAskedFor();
    void refusalLeavesNoOpenChange();
    void removedObjectIsReleasedAsAChange();
    void deletedObjectIsReleased();
    void destroyedPropertyLeavesNoTrace();
    void pointingAwayLeavesNoTrace();

private:
    std::unique_ptr<ZAXFeatContainer> m_container;
    ZAXProbePart* m_owner = nullptr;
    ZAXProbePart* m_target = nullptr;
};

void tst_ZAXFeatObjectProperty::init()
{
    m_container = std::make_unique<ZAXFeatContainer>();
    m_owner = AddPart(*m_container, "owner");
    m_target = AddPart(*m_container, "target");
}

void tst_ZAXFeatObjectProperty::pointsAtNothingAtFirst()
{
    QVERIFY(!m_owner->partner.GetPointedObject());
    QVERIFY(!m_owner->partner.GetObject());
}

void tst_ZAXFeatObjectProperty::isBoundToNoMetaProperty()
{
    QCOMPARE(m_owner->partner.GetPropertyIndex(), -1);
    QCOMPARE(m_owner->partner.GetFeature(), m_owner);
}

void tst_ZAXFeatObjectProperty::isInputAsItWasMade()
{
    const ZAXFeatObjectProperty<ZAXProbePart> input(m_owner, true);
    const ZAXFeatObjectProperty<ZAXProbePart> output(m_owner, false);
    QVERIFY(input.IsInputProperty());
    QVERIFY(!output.IsInputProperty());
}

void tst_ZAXFeatObjectProperty::belongsToNoList()
{
    QVERIFY(!m_owner->partner.GetOwningList());
}

void tst_ZAXFeatObjectProperty::pointsAtWhatItIsGiven()
{
    m_owner->partner.SetPointedObject(m_target, false);
    QCOMPARE(m_owner->partner.GetPointedObject(), m_target);
    QCOMPARE(m_owner->partner.GetObject(), m_target);
    m_owner->partner.SetPointedObject(m_owner, false);
    QCOMPARE(m_owner->partner.GetObject(), m_owner);
    m_owner->partner.SetPointedObject(nullptr, false);
    QVERIFY(!m_owner->partner.GetPointedObject());
}

void tst_ZAXFeatObjectProperty::pointingIsOneChange()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    m_owner->partner.SetPointedObject(m_target, false);
    QCOMPARE(journal.Take(), Entries("about to change owner \n changed owner"));
}

void tst_ZAXFeatObjectProperty::silentPointingIsAChange()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    m_owner->partner.SetPointedObject(m_target, true);
    QCOMPARE(journal.Take(), Entries("about to change owner \n changed owner"));
}

void tst_ZAXFeatObjectProperty::pointingWithinAnOpenChangeOpensNone()
{
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    m_owner->partner.BeginModify();
    m_owner->partner.SetPointedObject(m_target);
    QCOMPARE(journal.Take(), Entries("about to change owner"));
    m_owner->partner.EndModify(true);
    QCOMPARE(journal.Take(), Entries("changed owner"));
}

void tst_ZAXFeatObjectProperty::acceptsADerivedClass()
{
    auto* const special = new ZAXProbeSpecialPart(m_owner);
    m_owner->partner.SetPointedObject(special, false);
    QCOMPARE(m_owner->partner.GetObject(), special);
}

void tst_ZAXFeatObjectProperty::refusesAnotherClass()
{
    ZAXProbeJournal journal;
    m_owner->partner.SetPointedObject(m_target, false);
    auto* const leaf = new ZAXProbeLeaf(m_owner);
    const ZAXProbeObserver observer(*m_container);
    QCOMPARE(MessageOf([&] { m_owner->partner.SetPointedObject(leaf, false); }),
             QStringLiteral("The object is not a ZAXProbePart."));
    QCOMPARE(m_owner->partner.GetObject(), m_target);
    QCOMPARE(journal.Take(), QStringList());
}

void tst_ZAXFeatObjectProperty::refusesAnotherDocument()
{
    ZAXFeatContainer other;
    ZAXProbePart* const stranger = AddPart(other, "stranger");
    m_owner->partner.SetPointedObject(m_target, false);
    QCOMPARE(MessageOf([&] { m_owner->partner.SetPointedObject(stranger, false); }),
             QStringLiteral("The object belongs to another document."));
    QCOMPARE(m_owner->partner.GetObject(), m_target);
    QVERIFY(!m_owner->partner.CanExternalReference(stranger));
}

void tst_ZAXFeatObjectProperty::mayAdmitAnotherDocument()
{
    ZAXFeatContainer other;
    ZAXProbePart* const stranger = AddPart(other, "stranger");
    WideProperty property(m_owner, true);
    property.SetPointedObject(stranger, false);
    QCOMPARE(property.GetObject(), stranger);
    QCOMPARE(property.asked, QList<ZAXFeatObject*>{stranger});
}

void tst_ZAXFeatObjectProperty::ownDocumentIsNotAskedFor()
{
    WideProperty property(m_owner, true);
    property.SetPointedObject(m_target, false);
    property.SetPointedObject(nullptr, false);
    QCOMPARE(property.asked, QList<ZAXFeatObject*>());
}

void tst_ZAXFeatObjectProperty::refusalLeavesNoOpenChange()
{
    ZAXFeatContainer other;
    ZAXProbePart* const stranger = AddPart(other, "stranger");
    MessageOf([&] { m_owner->partner.SetPointedObject(stranger, false); });
    QCOMPARE(ZAXFeatObjectPrivate::Get(*m_owner).openChanges, 0);
}

void tst_ZAXFeatObjectProperty::removedObjectIsReleasedAsAChange()
{
    m_owner->partner.SetPointedObject(m_target, false);
    ZAXProbeJournal journal;
    const ZAXProbeObserver observer(*m_container);
    m_target->Remove();
    QVERIFY(!m_owner->partner.GetPointedObject());
    QCOMPARE(journal.Take().first(2), Entries("about to change owner \n changed owner"));
}

void tst_ZAXFeatObjectProperty::deletedObjectIsReleased()
{
    m_owner->partner.SetPointedObject(m_target, false);
    delete m_target;
    QVERIFY(!m_owner->partner.GetPointedObject());
}

void tst_ZAXFeatObjectProperty::destroyedPropertyLeavesNoTrace()
{
    {
        ZAXFeatObjectProperty<ZAXProbePart> property(m_owner, true);
        property.SetPointedObject(m_target, false);
        QCOMPARE(m_target->GetAllDependents(), QList<ZAXFeatObject*>{m_owner});
    }
    QCOMPARE(m_target->GetAllDependents(), QList<ZAXFeatObject*>());
    m_target->Remove();
}

void tst_ZAXFeatObjectProperty::pointingAwayLeavesNoTrace()
{
    m_owner->partner.SetPointedObject(m_target, false);
    m_owner->partner.SetPointedObject(nullptr, false);
    QCOMPARE(m_target->GetAllDependents(), QList<ZAXFeatObject*>());
}

QTEST_GUILESS_MAIN(tst_ZAXFeatObjectProperty)
#include "tst_ZAXFeatObjectProperty.moc"
