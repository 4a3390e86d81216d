#include "ZAXMatGlobal.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"
#include "ZAXMatProviderCachePrivate.h"
#include "ZAXMatRoot.h"

#include "ZAXGeoContainer.h"
#include "ZAXSysAbstractEnumLocalization.h"
#include "ZAXSysRegisterInit.h"

#include <QList>
#include <QLoggingCategory>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>
#include <QMetaType>

#include <algorithm>

// What happens when the library is loaded and unloaded. All static initialisers with an order to keep stand in this
// one source, from top to bottom, and what they do is undone from bottom to top; across sources the linker would
// decide.

namespace {

Q_LOGGING_CATEGORY(logModule, "zax.material.module", QtInfoMsg)

/// The meta-types that \a type names: of its properties, and of what its methods and constructors take and return.
QList<QMetaType> NamedTypes(const QMetaObject& type)
{
    QList<QMetaType> types;
    const auto add = [&types](const QMetaMethod& method) {
        types.append(method.returnMetaType());
        for (int i = 0; i < method.parameterCount(); ++i)
            types.append(method.parameterMetaType(i));
    };
    for (int i = 0; i < type.constructorCount(); ++i)
        add(type.constructor(i));
    for (int i = type.methodOffset(); i < type.methodCount(); ++i)
        add(type.method(i));
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i)
        types.append(type.property(i).metaType());
    return types;
}

/// Takes \a type out of Qt's registry if Qt knows it through this library's data, which is about to be unmapped.
void Unregister(QMetaType type)
{
    const bool isCustom = type.isRegistered() && type.id() > QMetaType::User;
    if (isCustom && QMetaType(type.id()).iface() == type.iface())
        QMetaType::unregisterMetaType(type);
}

/// Takes the library's meta-types back, after everything that could still name one is gone: the first object of the
/// library to be made, and so the last to go.
const struct MetaTypeRelease
{
    /// The logging category is made here so that it outlives all that is made later.
    MetaTypeRelease() { logModule(); }
    ~MetaTypeRelease()
    {
        Release<ZAXMatMaterial>();
        Release<ZAXMatMaterialExtension>();
        Release<ZAXMatPackaging>();
        Release<ZAXMatPackagingExtension>();
        Release<ZAXMatRoot>();
        Unregister(QMetaType::fromType<ZAXMatPackaging::Form>());
    }

    template <typename Feature>
    static void Release()
    {
        Unregister(QMetaType::fromType<Feature*>());
        Unregister(QMetaType::fromType<const Feature*>());
        Unregister(QMetaType::fromType<QList<Feature*>>());
        const auto types = NamedTypes(Feature::staticMetaObject);
        std::ranges::for_each(types, Unregister);
    }
} metaTypeRelease;

/// Registers the meta-type of T under the normalised \a name too, where that is not its own. A list also becomes
/// walkable as a QSequentialIterable, unless it is already.
template <typename T>
void RegisterMetaType(const QByteArray& name)
{
    qRegisterNormalizedMetaType<T>(QMetaObject::normalizedType(name.constData()));
}

/// Has the host create features of a class by name, as long as the library is loaded.
template <typename Feature>
class FeatureRegistration
{
public:
    FeatureRegistration()
    {
        qRegisterMetaType<Feature*>();
        RegisterMetaType<const Feature*>(QByteArray("const ") + Feature::staticMetaObject.className() + '*');
        ZAXGeoContainer::RegisterType(&Feature::staticMetaObject);
    }
    ~FeatureRegistration() { ZAXGeoContainer::UnregisterType(&Feature::staticMetaObject); }
    FeatureRegistration(const FeatureRegistration&) = delete;
    FeatureRegistration& operator=(const FeatureRegistration&) = delete;
};

const FeatureRegistration<ZAXMatMaterial> materialRegistration;

const FeatureRegistration<ZAXMatPackaging> packagingRegistration;

const struct ProviderCacheTableRelease
{
    ~ProviderCacheTableRelease()
    {
        ZAXMatProviderCacheTable::Release();
        qCDebug(logModule, "released the table of provider caches");
    }
} providerCacheTableRelease;

const FeatureRegistration<ZAXMatRoot> rootRegistration;

void RegisterFormConverters()
{
    using Form = ZAXMatPackaging::Form;
    if (!QMetaType::hasRegisteredConverterFunction<Form, QString>())
        QMetaType::registerConverter<Form, QString>(&ZAXMatPackaging::GetFormLabel);
    if (!QMetaType::hasRegisteredConverterFunction<QString, Form>()) {
        QMetaType::registerConverter<QString, Form>([](const QString& text) {
            return static_cast<Form>(
                ZAXSysAbstractEnumLocalization::StringToInteger(QMetaType::fromType<Form>().id(), text));
        });
    }
}

void RegisterFormLocalization()
{
    const QMetaObject& packaging = ZAXMatPackaging::staticMetaObject;
    const QMetaEnum form = packaging.enumerator(packaging.indexOfEnumerator("Form"));
    const int id = QMetaType::fromType<ZAXMatPackaging::Form>().id();
    if (id == 0)
        return;
    QList<int> values;
    for (int i = 0; i < form.keyCount(); ++i)
        values.append(form.value(i));
    ZAXSysAbstractEnumLocalization::RegisterValueLocalization(
        id, values, [](int value) { return ZAXMatPackaging::GetFormLabel(static_cast<ZAXMatPackaging::Form>(value)); });
}

/// Makes the list properties walkable and the forms readable for the host. Running it again changes nothing.
void RegisterTypes()
{
    RegisterMetaType<QList<ZAXMatMaterial*>>("QList<ZAXMatMaterial *>");
    RegisterMetaType<QList<ZAXMatMaterialExtension*>>("QList<ZAXMatMaterialExtension *>");
    RegisterMetaType<QList<ZAXMatPackagingExtension*>>("QList<ZAXMatPackagingExtension *>");
    RegisterMetaType<ZAXMatPackaging::Form>("ZAXMatPackaging::Form");
    RegisterFormConverters();
    RegisterFormLocalization();
}

} // namespace

bool _ZAXMaterialLoaded = ZAXSysRegisterInit(RegisterTypes);
