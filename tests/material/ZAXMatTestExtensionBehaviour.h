#ifndef ZAXMATTESTEXTENSIONBEHAVIOUR_H
#define ZAXMATTESTEXTENSIONBEHAVIOUR_H

#include "ZAXMatTestDocument.h"
#include "ZAXMatTestListeners.h"

#include <QSignalSpy>
#include <QTest>

#include <type_traits>

/// What extensions of materials and of packagings have in common. \a Kind says which of them is meant: Base is the
/// class under test, Owner what it hangs on, Plain a concrete class that adds nothing and Rich one that adds the
/// property Field; CreateOwner() makes an owner in a document, and Refusal() is what a missing one is answered with.
template <typename Kind>
class ZAXTestExtensionBehaviour
{
public:
    using Base = typename Kind::Base;
    using Plain = typename Kind::Plain;
    using Rich = typename Kind::Rich;

    static_assert(std::is_abstract_v<Base>);
    static_assert(!std::is_constructible_v<Base, typename Kind::Owner*>);
    static_assert(!std::is_constructible_v<Base, ZAXGeoContainer*, const ZAXGeoGeometryRef&>);

    static void HasOnePropertyOneSignalAndNoConstructors()
    {
        const QMetaObject& meta = Base::staticMetaObject;
        QCOMPARE(meta.superClass(), &ZAXFeatObject::staticMetaObject);
        QCOMPARE(PropertiesOf(meta), QStringList{Text("isExtensionEnabled")});
        QCOMPARE(SignalsOf(meta), QStringList{Text("ExtensionEnabledChanged(bool state)")});
        QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
        QCOMPARE(ConstructorsOf(meta), QStringList());
        QCOMPARE(QByteArray(Base::Property_isExtensionEnabled), QByteArray("isExtensionEnabled"));
        QCOMPARE(ZAXGeoStream::GetCurrentVersion(&meta), 1);
    }

    static void PropertyIsDescribed()
    {
        const QMetaObject& meta = Base::staticMetaObject;
        const QMetaProperty property = meta.property(meta.propertyOffset());
        QVERIFY(property.metaType() == QMetaType::fromType<bool>());
        QVERIFY(property.isReadable());
        QVERIFY(property.isWritable());
        QVERIFY(property.isDesignable());
        QVERIFY(property.isScriptable());
        QVERIFY(property.isStored());
        QCOMPARE(property.notifySignal().methodSignature(), QByteArray("ExtensionEnabledChanged(bool)"));
    }

    static void OwnerMustNotBeMissing()
    {
        ZAXTestDocument document;
        const auto before = document.container.GetGeometries();
        QCOMPARE(MessageThrownBy([] { delete new Plain(static_cast<ZAXFeatObject*>(nullptr)); }), Kind::Refusal());
        QCOMPARE(MessageThrownBy([&] { delete new Plain(document.root); }), Kind::Refusal());
        QCOMPARE(document.container.GetGeometries(), before);
    }

    static void StandsUnderItsOwnerOnceConstructed()
    {
        ZAXTestDocument document;
        ZAXFeatObject* const owner = Kind::CreateOwner(document);
        auto* const extension = new Plain(owner);
        QCOMPARE(owner->GetChildren(), QList<ZAXFeatObject*>{extension});
        QCOMPARE(extension->GetContainer(), &document.container);
    }

    static void StartsDisabled()
    {
        ZAXTestDocument document;
        QVERIFY(!document.Create<Plain>(Kind::CreateOwner(document))->IsExtensionEnabled());
        QVERIFY(!Plain(static_cast<ZAXGeoContainer*>(nullptr), ZAXGeoGeometryRef()).IsExtensionEnabled());
    }

    static void NotifiesChangesOnly()
    {
        ZAXTestDocument document;
        Base* const extension = document.Create<Plain>(Kind::CreateOwner(document));
        const ZAXTestSignalLog log(extension);
        QSignalSpy spy(extension, &Base::ExtensionEnabledChanged);
        extension->SetExtensionEnabled(false);
        QCOMPARE(log.names, QStringList());
        extension->SetExtensionEnabled(true);
        extension->SetExtensionEnabled(true);
        QVERIFY(extension->IsExtensionEnabled());
        QCOMPARE(log.names, QStringList{Text("ExtensionEnabledChanged")});
        QCOMPARE(spy.constFirst().constFirst(), QVariant(true));
        extension->SetExtensionEnabled(false);
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.constLast().constFirst(), QVariant(false));
    }

    static void PropertyIsWrittenBySetter()
    {
        ZAXTestDocument document;
        Base* const extension = document.Create<Plain>(Kind::CreateOwner(document));
        QSignalSpy spy(extension, &Base::ExtensionEnabledChanged);
        QVERIFY(extension->setProperty(Base::Property_isExtensionEnabled, true));
        QVERIFY(extension->IsExtensionEnabled());
        QCOMPARE(extension->property(Base::Property_isExtensionEnabled), QVariant(true));
        QCOMPARE(spy.count(), 1);
    }

    static void IsNeitherRememberedNorInitialized()
    {
        ZAXTestLastSavedStore store;
        ZAXTestDocument document;
        ZAXFeatObject* const owner = Kind::CreateOwner(document);
        document.Create<Plain>(owner)->SetExtensionEnabled(true);
        QCOMPARE(store.noted, QStringList());
        store.SetValue(Plain::staticMetaObject.className(), "isExtensionEnabled", true);
        QVERIFY(!document.Create<Plain>(owner)->IsExtensionEnabled());
    }

    static void SavesOneByteBehindItsBase()
    {
        ZAXTestDocument document;
        Base* const extension = document.Create<Plain>(Kind::CreateOwner(document));
        ZAXGeoStream base(&document.container);
        extension->ZAXFeatObject::Save(base);
        QCOMPARE(ZAXTestStored::From(*extension).payload, base.GetPayload() + '\0');
        extension->SetExtensionEnabled(true);
        QCOMPARE(ZAXTestStored::From(*extension).payload, base.GetPayload() + '\1');
        QVERIFY(ZAXTestStored::From(*extension).references.isEmpty());
    }

    static void LoadsWhatItSaves()
    {
        ZAXTestLastSavedStore store;
        ZAXTestDocument document;
        ZAXFeatObject* const owner = Kind::CreateOwner(document);
        auto* const extension = document.Create<Plain>(owner);
        const ZAXTestStored disabled = ZAXTestStored::From(*extension);
        extension->SetExtensionEnabled(true);
        const ZAXTestStored enabled = ZAXTestStored::From(*extension);
        auto* const loaded = document.Recreate<Plain>(100, owner);
        ZAXTestSignalLog log(loaded);
        disabled.LoadInto(*loaded);
        QVERIFY(!loaded->IsExtensionEnabled());
        QCOMPARE(log.names, QStringList());
        enabled.LoadInto(*loaded);
        QVERIFY(loaded->IsExtensionEnabled());
        QCOMPARE(log.names, QStringList{Text("ExtensionEnabledChanged")});
        QCOMPARE(store.noted, QStringList());
    }

    static void LoadsWhateverTheVersion()
    {
        ZAXTestDocument document;
        ZAXFeatObject* const owner = Kind::CreateOwner(document);
        auto* const extension = document.Create<Plain>(owner);
        extension->SetExtensionEnabled(true);
        auto* const loaded = document.Recreate<Plain>(100, owner);
        ZAXTestStored::From(*extension).LoadInto(*loaded, {{Base::staticMetaObject.className(), 9}});
        QVERIFY(loaded->IsExtensionEnabled());
    }

    static void DerivedClassStoresItsFieldsBehind()
    {
        ZAXTestDocument document;
        ZAXFeatObject* const owner = Kind::CreateOwner(document);
        auto* const extension = document.Create<Rich>(owner);
        extension->SetExtensionEnabled(true);
        QVERIFY(extension->setProperty(Kind::Field, 2.5));
        ZAXGeoStream expected(&document.container);
        extension->ZAXFeatObject::Save(expected);
        expected << true << 2.5;
        QCOMPARE(ZAXTestStored::From(*extension), ZAXTestStored::From(expected));
        auto* const loaded = document.Recreate<Rich>(100, owner);
        ZAXTestStored::From(expected).LoadInto(*loaded);
        QVERIFY(loaded->IsExtensionEnabled());
        QCOMPARE(loaded->property(Kind::Field), QVariant(2.5));
    }

    static void OwnPropertiesFollowTheSwitch()
    {
        const QMetaObject& meta = Rich::staticMetaObject;
        QCOMPARE(QByteArray(meta.property(Base::staticMetaObject.propertyOffset()).name()),
                 QByteArray("isExtensionEnabled"));
        QCOMPARE(QByteArray(meta.property(Base::staticMetaObject.propertyCount()).name()), QByteArray(Kind::Field));
    }

    static void IsNamedForTheUserByItsClass()
    {
        ZAXTestDocument document;
        Base* const extension = document.Create<Rich>(Kind::CreateOwner(document));
        extension->SetLabel(Text("some other"));
        QCOMPARE(extension->GetExtensionLabel(), Kind::Label());
    }
};

#endif
