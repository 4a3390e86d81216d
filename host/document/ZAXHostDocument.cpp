#include "ZAXHostDocument.h"

#include "ZAXFeatChangeObserver.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoContainerPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXHostDocumentCodec.h"
#include "ZAXHostStateLoader.h"
#include "ZAXSysException.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostDocument", text);
}

QString Native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

/// Writes all of \a bytes, again and again: a device that takes a part of them does not say why, one that takes
/// nothing any more does.
bool WriteAll(QIODevice& device, const QByteArray& bytes)
{
    for (qsizetype written = 0; written < bytes.size();) {
        const qint64 taken = device.write(bytes.constData() + written, bytes.size() - written);
        if (taken <= 0)
            return false;
        written += taken;
    }
    return true;
}

/// Adds the versions of \a type and its bases.
void AddVersions(const QMetaObject* type, QHash<QByteArray, int>& versions)
{
    for (; type && type != &QObject::staticMetaObject && !versions.contains(type->className());
         type = type->superClass())
        versions.insert(type->className(), ZAXGeoStream::GetCurrentVersion(type));
}

void AddRecords(const QList<ZAXFeatObject*>& siblings, int nesting, ZAXHostDocumentImage& image)
{
    if (nesting > ZAXHostDocumentCodec::maximumNesting && !siblings.isEmpty())
        throw ZAXSysException(Tr("The objects of the document are nested too deeply to be saved."));
    quint32 place = 0;
    for (const ZAXFeatObject* feature : siblings) {
        AddVersions(feature->metaObject(), image.versions);
        ZAXGeoStream stream(feature->GetContainer());
        feature->Save(stream);
        const ZAXFeatObject* const parent = feature->GetParent();
        image.records.append({feature->metaObject()->className(), feature->GetId(), parent ? parent->GetId() : 0,
                              place++, stream.GetReferences(), stream.GetPayload()});
        AddRecords(feature->GetChildren(), nesting + 1, image);
    }
}

/// Says which object of a document a failure is about.
ZAXHostResult FailedObject(const ZAXHostDocumentRecord& record, const QString& why)
{
    return ZAXHostResult::Failed(Tr("The object %1 of class %2 could not be loaded: %3")
                                     .arg(QString::number(record.id), QString::fromUtf8(record.className), why));
}

/// Why this program cannot read objects of the class \a className; empty if it can.
QString WhyUnreadable(const QByteArray& className, const QHash<QByteArray, int>& versions)
{
    const QMetaObject* type = ZAXGeoContainer::FindType(className);
    if (!type)
        return Tr("no loaded module provides the class.");
    for (; type; type = type->superClass()) {
        const int stored = versions.value(type->className(), 1);
        const int current = ZAXGeoStream::GetCurrentVersion(type);
        if (stored > current)
            return Tr("it was saved by a newer program (version %1 of %2, this program knows version %3).")
                .arg(QString::number(stored), QString::fromUtf8(type->className()), QString::number(current));
    }
    return {};
}

ZAXHostResult Populate(ZAXFeatContainer* container, const ZAXHostDocumentImage& image)
{
    // First of all: what features make of their own meanwhile must not take the ids of those that follow.
    ZAXGeoContainerPrivate::Get(*container).lastId = image.lastId;
    ZAXHostStateLoader loader(container);
    loader.SetVersions(image.versions);
    QList<ZAXFeatObject*> features;
    for (const ZAXHostDocumentRecord& record : image.records) {
        if (const QString why = WhyUnreadable(record.className, image.versions); !why.isEmpty())
            return FailedObject(record, why);
        try {
            const auto reference = ZAXGeoGeometryRef::FromId(record.id);
            ZAXFeatObject* const feature =
                loader.Make(ZAXGeoContainer::FindType(record.className), reference).release();
            features.append(feature);
            auto* const parent =
                static_cast<ZAXFeatObject*>(container->GetGeometryByRef(ZAXGeoGeometryRef::FromId(record.parent)));
            if (parent)
                ZAXFeatObjectPrivate::Get(*feature).AttachTo(parent, record.place);
            ZAXFeatObjectPrivate::Get(*feature).isAnnounced = true;
        } catch (const ZAXSysException& exception) {
            return FailedObject(record, exception.GetMessage());
        }
    }
    for (qsizetype i = 0; i < features.size(); ++i) {
        const ZAXHostDocumentRecord& record = image.records.at(i);
        try {
            loader.Load(features.at(i), record.payload, record.references);
        } catch (const ZAXSysException& exception) {
            return FailedObject(record, exception.GetMessage());
        }
    }
    try {
        loader.EndLoad();
    } catch (const ZAXSysException& exception) {
        return ZAXHostResult::Failed(Tr("The document could not be loaded: %1").arg(exception.GetMessage()));
    }
    return ZAXHostResult::Done();
}

} // namespace

class ZAXHostDocumentPrivate : public ZAXFeatChangeObserver
{
public:
    ZAXHostDocumentPrivate() { Observe(); }

    void AboutToChange(ZAXFeatObject*) override {}
    void Changed(ZAXFeatObject*) override { isModified = true; }

    void Observe() { ZAXFeatContainerPrivate::Get(*container).observer = this; }

    std::unique_ptr<ZAXFeatContainer> container = std::make_unique<ZAXFeatContainer>();
    QUuid documentId = QUuid::createUuid();
    bool isModified = false;
};

ZAXHostDocument::ZAXHostDocument() : d_ptr(std::make_unique<ZAXHostDocumentPrivate>()) {}

ZAXHostDocument::~ZAXHostDocument() = default;

ZAXFeatContainer* ZAXHostDocument::GetContainer() const
{
    return d_ptr->container.get();
}

QUuid ZAXHostDocument::GetDocumentId() const
{
    return d_ptr->documentId;
}

bool ZAXHostDocument::IsModified() const
{
    return d_ptr->isModified;
}

QByteArray ZAXHostDocument::Encode() const
{
    ZAXHostDocumentImage image;
    image.documentId = d_ptr->documentId;
    image.lastId = ZAXGeoContainerPrivate::Get(*d_ptr->container).lastId;
    AddRecords(d_ptr->container->GetRoots(), 1, image);
    return ZAXHostDocumentCodec::Encode(image);
}

ZAXHostResult ZAXHostDocument::Load(QIODevice* device)
{
    ZAXHostDocumentImage image;
    if (const auto result = ZAXHostDocumentCodec::Decode(device->readAll(), image); !result)
        return result;
    auto container = std::make_unique<ZAXFeatContainer>();
    if (const auto result = Populate(container.get(), image); !result)
        return result;
    d_ptr->container = std::move(container);
    d_ptr->documentId = image.documentId;
    d_ptr->isModified = false;
    d_ptr->Observe();
    return ZAXHostResult::Done();
}

ZAXHostResult ZAXHostDocument::Save(QIODevice* device) const
{
    try {
        if (!WriteAll(*device, Encode()))
            return ZAXHostResult::Failed(device->errorString());
    } catch (const ZAXSysException& exception) {
        return ZAXHostResult::Failed(exception.GetMessage());
    }
    return ZAXHostResult::Done();
}

ZAXHostResult ZAXHostDocument::Open(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return ZAXHostResult::Failed(Tr("The document %1 cannot be opened: %2").arg(Native(path), file.errorString()));
    const auto result = Load(&file);
    if (!result)
        return ZAXHostResult::Failed(Tr("The document %1 cannot be read: %2").arg(Native(path), result.GetMessage()));
    return result;
}

ZAXHostResult ZAXHostDocument::SaveAs(const QString& path)
{
    const auto failed = [&](const QString& why) {
        return ZAXHostResult::Failed(Tr("The document %1 cannot be saved: %2").arg(Native(path), why));
    };
    QByteArray bytes;
    try {
        bytes = Encode();
    } catch (const ZAXSysException& exception) {
        return failed(exception.GetMessage());
    }
    // Unbuffered: QSaveFile replaces the old file even when the last bytes, which it holds back, cannot be written.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || !WriteAll(file, bytes) || !file.commit())
        return failed(file.errorString());
    QFile written(path);
    if (!written.open(QIODevice::ReadOnly) || written.readAll() != bytes)
        return failed(Tr("what was written does not read back."));
    d_ptr->isModified = false;
    return ZAXHostResult::Done();
}
