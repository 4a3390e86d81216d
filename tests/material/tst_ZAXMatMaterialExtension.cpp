#include "ZAXMatMaterialExtension.h"

#include "ZAXMatTestExtensionBehaviour.h"

namespace {

struct MaterialKind
{
    using Base = ZAXMatMaterialExtension;
    using Owner = ZAXMatMaterial;
    using Plain = ZAXTestPiercing;
    using Rich = ZAXTestAssistGas;
    static constexpr char Field[] = "pressure";

    static ZAXFeatObject* CreateOwner(ZAXTestDocument& document) { return document.CreateMaterial(); }
    static QString Refusal() { return Text("A material extension needs a material as its parent."); }
    static QString Label() { return Text("Assist gas"); }
};

using Behaviour = ZAXTestExtensionBehaviour<MaterialKind>;

} // namespace

class tst_ZAXMatMaterialExtension : public QObject
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

void tst_ZAXMatMaterialExtension::classDescribesItself()
{
    const QStringList expected{
        Text("defaultLabel=Material Extension"),
        Text("inputProps=connection isExtensionEnabled"),
        Text("outputProps="),
        Text("visProps="),
        Text("contextualActions="),
        Text("editAction="),
        Text("allowedParents=ZAXMatMaterial"),
        Text("PropertyLabel_isExtensionEnabled=Enabled"),
    };
    QCOMPARE(ClassInformationOf(ZAXMatMaterialExtension::staticMetaObject), expected);
}

QTEST_GUILESS_MAIN(tst_ZAXMatMaterialExtension)
#include "tst_ZAXMatMaterialExtension.moc"
