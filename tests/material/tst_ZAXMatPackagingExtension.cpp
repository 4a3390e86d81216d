#include "ZAXMatPackagingExtension.h"

#include "ZAXMatTestExtensionBehaviour.h"

namespace {

struct PackagingKind
{
    using Base = ZAXMatPackagingExtension;
    using Owner = ZAXMatPackaging;
    using Plain = ZAXTestGrain;
    using Rich = ZAXTestTrim;
    static constexpr char Field[] = "margin";

    static ZAXFeatObject* CreateOwner(ZAXTestDocument& document) { return document.CreatePackaging(); }
    static QString Refusal() { return Text("A packaging extension needs a packaging as its parent."); }
    static QString Label() { return Text("Trim"); }
};

using Behaviour = ZAXTestExtensionBehaviour<PackagingKind>;

} // namespace

class tst_ZAXMatPackagingExtension : public QObject
{
    Q_OBJECT

private slots:
    void init() { ZAXFeatLastSavedStore::SetCurrent(nullptr); }

    void classDescribesItself();
    void hasOnePropertyOneSignalAndNoConstructors() { Behaviour::HasOnePropertyOneSignalAndNoConstructors(); }
    void propertyIsDescribed() { Behaviour::PropertyIsDescribed(); }
    void ownerMustNotBeMissing() { Behaviour::OwnerMustNotBeMissing(); }
    void standsUnderItsOwnerOnceConstructed() { Behaviour::StandsUnderItsOwnerOnceConstructed(); }
    void startsDisabled() { Behaviour::StartsDisabled(); }
    void notifiesChangesOnly() { Behaviour::NotifiesChangesOnly(); }
    void propertyIsWrittenBySetter() { Behaviour::PropertyIsWrittenBySetter(); }
    void isNeitherRememberedNorInitialized() { Behaviour::IsNeitherRememberedNorInitialized(); }
    void savesOneByteBehindItsBase() { Behaviour::SavesOneByteBehindItsBase(); }
    void loadsWhatItSaves() { Behaviour::LoadsWhatItSaves(); }
    void loadsWhateverTheVersion() { Behaviour::LoadsWhateverTheVersion(); }
    void derivedClassStoresItsFieldsBehind() { Behaviour::DerivedClassStoresItsFieldsBehind(); }
    void ownPropertiesFollowTheSwitch() { Behaviour::OwnPropertiesFollowTheSwitch(); }
    void isNamedForTheUserByItsClass() { Behaviour::IsNamedForTheUserByItsClass(); }
};

void tst_ZAXMatPackagingExtension::classDescribesItself()
{
    const QStringList expected{
        Text("defaultLabel=Packaging Extension"),
        Text("inputProps=connection isExtensionEnabled"),
        Text("outputProps="),
        Text("visProps="),
        Text("contextualActions="),
        Text("editAction="),
        Text("allowedParents=ZAXMatPackaging"),
        Text("PropertyLabel_isExtensionEnabled=Enabled"),
    };
    QCOMPARE(ClassInformationOf(ZAXMatPackagingExtension::staticMetaObject), expected);
}

QTEST_GUILESS_MAIN(tst_ZAXMatPackagingExtension)
#include "tst_ZAXMatPackagingExtension.moc"
