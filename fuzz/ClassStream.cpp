// The stored form of a feature, in each version of its class: the first byte of an input chooses the class, the second
// the version, then come the references and the payload as in tests/material/golden. A feature that takes it is saved
// in today's form, and that is loaded and saved as it was.

#include "FuzzInput.h"
#include "ZAXGeoGeometryNotFoundException.h"
#include "ZAXMatTestDocument.h"
#include "ZAXSysException.h"

#include <QtEndian>

namespace {

/// A material 2 with the packagings 3 and 4 and the extensions 5 and 6, the packaging 7 with the extensions 8 and 9,
/// and a materials root 10.
class Document
{
public:
    Document()
    {
        auto* const material = m_document.Recreate<ZAXMatMaterial>(2, m_document.root);
        m_document.Recreate<ZAXMatPackaging>(3, material);
        m_document.Recreate<ZAXMatPackaging>(4, material);
        m_document.Recreate<ZAXTestAssistGas>(5, material);
        m_document.Recreate<ZAXTestPiercing>(6, material);
        auto* const packaging = m_document.Recreate<ZAXMatPackaging>(7, material);
        m_document.Recreate<ZAXTestTrim>(8, packaging);
        m_document.Recreate<ZAXTestGrain>(9, packaging);
        new ZAXMatRoot(&m_document.container, ZAXGeoGeometryRef::FromId(10));
        material->SetNestingColor(QColor(1, 2, 3));
    }

    ZAXFeatObject* GetFeature(quint64 id)
    {
        return qobject_cast<ZAXFeatObject*>(m_document.container.GetGeometryByRef(ZAXGeoGeometryRef::FromId(id)));
    }

    /// Whether the feature takes \a stored, to the last byte.
    bool Load(ZAXFeatObject* feature, const ZAXTestStored& stored, const QHash<QByteArray, int>& versions)
    {
        ZAXGeoStream stream(&m_document.container, stored.payload, stored.references);
        if (!versions.isEmpty())
            stream.SetVersions(versions);
        try {
            feature->Load(stream);
        } catch (const ZAXGeoGeometryNotFoundException&) {
            return false;
        }
        return stream.GetDataStream().status() == QDataStream::Ok && stream.GetDataStream().atEnd();
    }

private:
    ZAXTestDocument m_document;
};

/// The classes by the ids of their features, the bases that have versions, too.
const QList<quint64> subjects{2, 7, 6, 9, 10, 5, 8};

ZAXTestStored Stored(FuzzInput& input)
{
    ZAXTestStored stored;
    const quint32 count = qFromBigEndian<quint32>(input.Bytes(4).leftJustified(4, '\0').constData()) % 16;
    for (quint32 i = 0; i < count; ++i)
        stored.references.append(
            ZAXGeoGeometryRef::FromId(qFromBigEndian<quint64>(input.Bytes(8).leftJustified(8, '\0').constData())));
    stored.payload = input.Rest();
    return stored;
}

void CheckRest(Document& document, ZAXFeatObject* feature)
{
    try {
        feature->EndStateLoad();
    } catch (const ZAXGeoGeometryNotFoundException&) {
        return;
    } catch (const ZAXSysException&) {
        return;
    }
    feature->UpdateResult();
    const ZAXTestStored saved = ZAXTestStored::From(*feature);
    Require(document.Load(feature, saved, {}), "what was saved can be loaded");
    feature->EndStateLoad();
    Require(ZAXTestStored::From(*feature) == saved, "what was loaded is saved as it was");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzInput input(data, size);
    Document document;
    ZAXFeatObject* const feature = document.GetFeature(input.OneOf(subjects));
    QHash<QByteArray, int> versions{{"ZAXFeatObject", 1}};
    const int version = 1 + input.Below(7);
    for (const QMetaObject* type = feature->metaObject(); type; type = type->superClass()) {
        const int newest = ZAXGeoStream::GetCurrentVersion(type);
        versions.insert(type->className(), std::min(version, newest));
    }
    if (document.Load(feature, Stored(input), versions))
        CheckRest(document, feature);
    return 0;
}
