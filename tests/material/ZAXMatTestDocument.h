#ifndef ZAXMATTESTDOCUMENT_H
#define ZAXMATTESTDOCUMENT_H

#include "ZAXFeatContainer.h"
#include "ZAXGeoStream.h"
#include "ZAXMatRoot.h"
#include "ZAXMatTestFeatures.h"

inline QString Text(const char* text)
{
    return QString::fromUtf8(text);
}

/// A document with a materials root. Everything in it is made as the host makes it.
class ZAXTestDocument
{
public:
    ZAXTestDocument()
    {
        for (const QMetaObject* type :
             {&ZAXMatMaterial::staticMetaObject, &ZAXMatPackaging::staticMetaObject, &ZAXMatRoot::staticMetaObject,
              &ZAXTestAssistGas::staticMetaObject, &ZAXTestPiercing::staticMetaObject, &ZAXTestTrim::staticMetaObject,
              &ZAXTestGrain::staticMetaObject, &ZAXTestCoatedMaterial::staticMetaObject})
            ZAXGeoContainer::RegisterType(type);
        root = Create<ZAXMatRoot>(nullptr);
    }

    /// A new feature of class T.
    template <typename T>
    T* Create(ZAXFeatObject* parent)
    {
        return qobject_cast<T*>(container.CreateInstance(T::staticMetaObject.className(), parent));
    }

    ZAXMatMaterial* CreateMaterial() { return Create<ZAXMatMaterial>(root); }
    ZAXMatPackaging* CreatePackaging() { return Create<ZAXMatPackaging>(CreateMaterial()); }

    /// A feature of class T with the given id, as it stands in a document before it is loaded.
    template <typename T>
    T* Recreate(quint64 id, ZAXFeatObject* parent)
    {
        auto* const feature = new T(&container, ZAXGeoGeometryRef::FromId(id));
        feature->MoveTo(parent, -1);
        return feature;
    }

    ZAXFeatContainer container;
    ZAXMatRoot* root;
};

/// A feature's fields as they stand in a document.
struct ZAXTestStored
{
    QByteArray payload;
    QList<ZAXGeoGeometryRef> references;

    /// What was written into \a stream.
    static ZAXTestStored From(const ZAXGeoStream& stream) { return {stream.GetPayload(), stream.GetReferences()}; }

    /// What \a feature saves.
    static ZAXTestStored From(const ZAXFeatObject& feature)
    {
        ZAXGeoStream stream(feature.GetContainer());
        feature.Save(stream);
        return From(stream);
    }

    /// Loads this into \a feature. Class versions that are not given are 1; given none, they are today's.
    void LoadInto(ZAXFeatObject& feature, const QHash<QByteArray, int>& versions = {}) const
    {
        ZAXGeoStream stream(feature.GetContainer(), payload, references);
        if (!versions.isEmpty())
            stream.SetVersions(versions);
        feature.Load(stream);
    }

    friend bool operator==(const ZAXTestStored&, const ZAXTestStored&) = default;
};

/// The texts of \a messages, "property: text", in order.
inline QStringList TextsOf(const QList<ZAXFeatObject::PropertyMessage>& messages)
{
    QStringList texts;
    for (const ZAXFeatObject::PropertyMessage& message : messages)
        texts.append(QLatin1String(message.property) + QLatin1String(": ") + message.text);
    return texts;
}

/// The own class information of \a type, "key=value", in order.
inline QStringList ClassInformationOf(const QMetaObject& type)
{
    QStringList entries;
    for (int i = type.classInfoOffset(); i < type.classInfoCount(); ++i)
        entries.append(QLatin1String(type.classInfo(i).name()) + QLatin1Char('=') +
                       QLatin1String(type.classInfo(i).value()));
    return entries;
}

/// The own properties of \a type by name, in order.
inline QStringList PropertiesOf(const QMetaObject& type)
{
    QStringList names;
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i)
        names.append(QLatin1String(type.property(i).name()));
    return names;
}

/// The own signals of \a type, "Name(type parameter)", in order.
inline QStringList SignalsOf(const QMetaObject& type)
{
    QStringList entries;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        if (method.methodType() == QMetaMethod::Signal)
            entries.append(QLatin1String(method.name()) + QLatin1Char('(') +
                           QLatin1String(method.parameterTypes().join(',') + ' ' + method.parameterNames().join(',')) +
                           QLatin1Char(')'));
    }
    return entries;
}

/// The invokable constructors of \a type, in order.
inline QStringList ConstructorsOf(const QMetaObject& type)
{
    QStringList entries;
    for (int i = 0; i < type.constructorCount(); ++i)
        entries.append(QLatin1String(type.constructor(i).methodSignature()));
    return entries;
}

#endif
