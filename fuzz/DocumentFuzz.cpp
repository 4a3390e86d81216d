#include "DocumentFuzz.h"

#include "FuzzInput.h"
#include "ZAXGeoContainer.h"
#include "ZAXHostDocument.h"
#include "ZAXHostDocumentCodec.h"
#include "ZAXHostUndo.h"
#include "ZAXMatTestFeatures.h"

#include <QBuffer>

namespace {

/// The modules that are loaded.
void RegisterClasses()
{
    static const bool isDone = [] {
        for (const QMetaObject* type :
             {&ZAXTestAssistGas::staticMetaObject, &ZAXTestPiercing::staticMetaObject, &ZAXTestTrim::staticMetaObject,
              &ZAXTestGrain::staticMetaObject, &ZAXTestCoatedMaterial::staticMetaObject})
            ZAXGeoContainer::RegisterType(type);
        return true;
    }();
    Q_UNUSED(isDone);
}

bool Load(ZAXHostDocument& document, QByteArray bytes, ZAXHostDocument::Damage damage)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return static_cast<bool>(document.Load(&buffer, damage));
}

void RequireStored(const ZAXHostDocument& document)
{
    const QByteArray saved = document.Encode();
    ZAXHostDocumentImage image;
    Require(static_cast<bool>(ZAXHostDocumentCodec::Decode(saved, image)), "what was saved can be read");
    Require(image.damages.isEmpty(), "what was saved is not damaged");
    Require(ZAXHostDocumentCodec::Encode(image) == saved, "what was read is written as it was");
    ZAXHostDocument other;
    Require(Load(other, saved, ZAXHostDocument::RefuseDamage), "what was saved can be loaded");
    Require(other.Encode() == saved, "what was loaded is saved as it was");
}

} // namespace

void CheckDocument(const QByteArray& bytes)
{
    RegisterClasses();
    ZAXHostDocument document;
    const QByteArray before = document.Encode();
    const bool isWhole = Load(document, bytes, ZAXHostDocument::RefuseDamage);
    Require(isWhole || document.Encode() == before, "a failure leaves the document as it was");
    Require(!isWhole || !document.IsDamaged(), "a document that is refused when damaged is not");
    if (isWhole)
        RequireStored(document);

    ZAXHostDocument recovered;
    const bool isRecovered = Load(recovered, bytes, ZAXHostDocument::RecoverDamage);
    Require(isRecovered || !isWhole, "what is whole can be recovered");
    if (isRecovered && !isWhole)
        RequireStored(recovered);
    Require(!isWhole || recovered.Encode() == document.Encode(), "of what is whole all is recovered");
}
