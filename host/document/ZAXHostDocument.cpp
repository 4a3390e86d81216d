#include "ZAXHostDocument.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObject.h"
#include "ZAXGeoContainerPrivate.h"
#include "ZAXGeoGeometryPrivate.h"
#include "ZAXHostDocumentImager.h"
#include "ZAXHostDocumentLock.h"
#include "ZAXHostFileSaver.h"
#include "ZAXHostUndo.h"
#include "ZAXSysException.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUndoStack>

#include <algorithm>
#include <iterator>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostDocument", text);
}

bool IsSameFile(const QString& a, const QString& b)
{
    return !a.isEmpty() && ZAXHostFileSaver::TargetOf(a) == ZAXHostFileSaver::TargetOf(b);
}

QString LabelOf(const ZAXGeoGeometry* geometry)
{
    const auto* const feature = qobject_cast<const ZAXFeatObject*>(geometry);
    return feature ? feature->GetLabel() : QString::fromUtf8(geometry->metaObject()->className());
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

} // namespace

class ZAXHostDocumentPrivate
{
public:
    ZAXHostDocumentImage MakeImage() const;
    /// Puts \a replacement with the objects of \a image in the place of the document's features.
    void Replace(const ZAXHostDocumentImage& image, std::unique_ptr<ZAXFeatContainer> replacement);
    /// The bytes of \a image, once they are known to give the same image back.
    ZAXHostResult EncodeChecked(const ZAXHostDocumentImage& image, QByteArray& bytes) const;
    bool HasLocked(const QString& file) const { return lock && lock->IsLocked() && IsSameFile(path, file); }
    /// Makes sure that nobody else writes the file \a path, by \a newLock if this document's lock does not say so.
    ZAXHostResult Claim(const QString& path, std::unique_ptr<ZAXHostDocumentLock>& newLock) const;
    /// Why the document must not be written to the file \a path; empty if it may.
    QString WhyProtected(const QString& path) const;

    std::unique_ptr<ZAXFeatContainer> container = std::make_unique<ZAXFeatContainer>();
    ZAXHostUndo undo{container.get()};
    QUuid documentId = QUuid::createUuid();
    /// The highest id that a file of this document may know; what was never saved may be given again.
    quint64 highestSavedId = 0;
    /// Changed in a way that the undo stack does not know.
    bool isTouched = false;

    QString path;
    QString readOnlyReason;
    QList<ZAXHostProblem> problems;
    /// The file that was damaged when it was opened; empty for none, and when that is accepted.
    QString damagedPath;
    bool isDamageAccepted = false;
    std::unique_ptr<ZAXHostDocumentLock> lock;
};

ZAXHostDocumentImage ZAXHostDocumentPrivate::MakeImage() const
{
    ZAXHostDocumentImage image;
    image.documentId = documentId;
    ZAXHostDocumentImager::Add(container->GetRoots(), true, image);
    image.lastId = ZAXHostDocumentImager::HighestId(image, highestSavedId);
    return image;
}

void ZAXHostDocumentPrivate::Replace(const ZAXHostDocumentImage& image, std::unique_ptr<ZAXFeatContainer> replacement)
{
    undo.SetContainer(replacement.get());
    container = std::move(replacement);
    documentId = image.documentId;
    highestSavedId = image.lastId;
    isTouched = false;
}

ZAXHostResult ZAXHostDocumentPrivate::EncodeChecked(const ZAXHostDocumentImage& image, QByteArray& bytes) const
{
    bytes = ZAXHostDocumentCodec::Encode(image);
    return ZAXHostDocumentCodec::Check(bytes, image);
}

ZAXHostResult ZAXHostDocumentPrivate::Claim(const QString& newPath, std::unique_ptr<ZAXHostDocumentLock>& newLock) const
{
    if (HasLocked(newPath))
        return ZAXHostResult::Done();
    newLock = std::make_unique<ZAXHostDocumentLock>();
    return newLock->Lock(newPath);
}

QString ZAXHostDocumentPrivate::WhyProtected(const QString& newPath) const
{
    if (undo.IsBusy())
        return Tr("a change of it is still under way.");
    // Whoever had it open may have saved it meanwhile.
    if (!readOnlyReason.isEmpty() && IsSameFile(path, newPath))
        return readOnlyReason;
    if (IsSameFile(damagedPath, newPath))
        return Tr("part of it was lost, and saving it would make the loss final; accept that first, or save it under "
                  "another name.");
    return {};
}

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

ZAXHostUndo& ZAXHostDocument::GetUndo() const
{
    return d_ptr->undo;
}

bool ZAXHostDocument::IsModified() const
{
    return d_ptr->isTouched || !d_ptr->undo.GetStack()->isClean();
}

QString ZAXHostDocument::GetPath() const
{
    return d_ptr->path;
}

QString ZAXHostDocument::GetReadOnlyReason() const
{
    return d_ptr->readOnlyReason;
}

QList<ZAXHostProblem> ZAXHostDocument::GetProblems() const
{
    return d_ptr->problems;
}

bool ZAXHostDocument::IsDamaged() const
{
    return !d_ptr->isDamageAccepted && std::ranges::any_of(d_ptr->problems, [](const ZAXHostProblem& problem) {
        return problem.kind == ZAXHostProblem::Damaged;
    });
}

void ZAXHostDocument::AcceptDamage()
{
    d_ptr->isDamageAccepted = true;
    d_ptr->damagedPath.clear();
}

QByteArray ZAXHostDocument::Encode() const
{
    return ZAXHostDocumentCodec::Encode(d_ptr->MakeImage());
}

ZAXHostResult ZAXHostDocument::Load(QIODevice* device, Damage damage)
{
    ZAXHostDocumentImage image;
    if (const auto result = ZAXHostDocumentCodec::Decode(device->readAll(), image); !result)
        return result;
    if (damage == RefuseDamage && !image.damages.isEmpty())
        return ZAXHostResult::Failed(image.damages.constFirst().GetMessage());
    if (d_ptr->undo.IsBusy())
        return ZAXHostResult::Failed(Tr("A change of the document is still under way."));
    auto replacement = std::make_unique<ZAXFeatContainer>();
    try {
        d_ptr->problems = ZAXHostDocumentImager::Populate(*replacement, image, {});
    } catch (const std::exception& exception) {
        // No id is left for the folder of what has lost its parent.
        return ZAXHostResult::Failed(QString::fromUtf8(exception.what()));
    }
    d_ptr->isDamageAccepted = false;
    d_ptr->damagedPath.clear();
    d_ptr->Replace(image, std::move(replacement));
    d_ptr->path.clear();
    d_ptr->readOnlyReason.clear();
    d_ptr->lock.reset();
    return ZAXHostResult::Done();
}

ZAXHostResult ZAXHostDocument::Save(QIODevice* device)
{
    try {
        const ZAXHostDocumentImage image = d_ptr->MakeImage();
        QByteArray bytes;
        if (const auto result = d_ptr->EncodeChecked(image, bytes); !result)
            return result;
        d_ptr->highestSavedId = image.lastId;
        if (!WriteAll(*device, bytes))
            return ZAXHostResult::Failed(device->errorString());
    } catch (const std::exception& exception) {
        return ZAXHostResult::Failed(QString::fromUtf8(exception.what()));
    }
    return ZAXHostResult::Done();
}

ZAXHostResult ZAXHostDocument::Open(const QString& path, Damage damage)
{
    const auto failed = [&](const char* text, const QString& why) {
        return ZAXHostResult::Failed(Tr(text).arg(QDir::toNativeSeparators(path), why));
    };
    // Locked before it is opened: whoever saves meanwhile puts another file in its place. A file that does not load
    // keeps the lock held now.
    const bool isOwn = d_ptr->HasLocked(path);
    auto lock = std::make_unique<ZAXHostDocumentLock>();
    const auto locked = isOwn ? ZAXHostResult::Done() : lock->Lock(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failed(QT_TRANSLATE_NOOP("ZAXHostDocument", "The document %1 cannot be opened: %2"), file.errorString());
    if (isOwn)
        lock = std::move(d_ptr->lock);
    // What was read before a failure Qt gives without a word: only the next attempt tells of it.
    QByteArray bytes = file.readAll();
    for (QByteArray more = file.readAll(); !more.isEmpty(); more = file.readAll())
        bytes.append(more);
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const auto result =
        file.error() == QFileDevice::NoError ? Load(&buffer, damage) : ZAXHostResult::Failed(file.errorString());
    if (!result) {
        if (isOwn)
            d_ptr->lock = std::move(lock);
        return failed(QT_TRANSLATE_NOOP("ZAXHostDocument", "The document %1 cannot be read: %2"), result.GetMessage());
    }
    d_ptr->path = path;
    d_ptr->damagedPath = IsDamaged() ? path : QString();
    d_ptr->lock = std::move(lock);
    d_ptr->readOnlyReason = locked.GetMessage();
    return result;
}

ZAXHostResult ZAXHostDocument::SaveAs(const QString& path)
{
    ZAXHostFileSystem system;
    return SaveAs(path, system);
}

ZAXHostResult ZAXHostDocument::SaveAs(const QString& path, ZAXHostFileSystem& system)
{
    const auto failed = [&](const QString& why) {
        return ZAXHostResult::Failed(
            Tr("The document %1 cannot be saved: %2").arg(QDir::toNativeSeparators(path), why));
    };
    if (const QString why = d_ptr->WhyProtected(path); !why.isEmpty())
        return failed(why);
    ZAXHostDocumentImage image;
    QByteArray bytes;
    try {
        image = d_ptr->MakeImage();
    } catch (const std::exception& exception) {
        return failed(QString::fromUtf8(exception.what()));
    }
    if (const auto result = d_ptr->EncodeChecked(image, bytes); !result)
        return failed(result.GetMessage());
    std::unique_ptr<ZAXHostDocumentLock> lock;
    if (const auto result = d_ptr->Claim(path, lock); !result)
        return failed(result.GetMessage());
    // From here on a file may hold these ids, whatever comes back.
    d_ptr->highestSavedId = image.lastId;
    if (const auto result = ZAXHostFileSaver::Save(path, bytes, system); !result)
        return failed(result.GetMessage());
    if (lock)
        d_ptr->lock = std::move(lock);
    d_ptr->path = path;
    d_ptr->readOnlyReason.clear();
    d_ptr->problems.removeIf([](const ZAXHostProblem& problem) { return problem.kind == ZAXHostProblem::Damaged; });
    d_ptr->isTouched = false;
    d_ptr->undo.GetStack()->setClean();
    return ZAXHostResult::Done();
}

QList<ZAXFeatObject*> ZAXHostDocument::GetInstances(const QMetaObject* type) const
{
    const auto& index = ZAXGeoContainerPrivate::Get(*d_ptr->container);
    QList<ZAXFeatObject*> instances;
    const auto geometries = index.geometries.values() + index.aside.values();
    for (ZAXGeoGeometry* geometry : geometries) {
        auto* const feature = qobject_cast<ZAXFeatObject*>(geometry);
        if (feature && feature->metaObject()->inherits(type))
            instances.append(feature);
    }
    std::ranges::sort(instances, {}, &ZAXFeatObject::GetId);
    return instances;
}

ZAXHostResult ZAXHostDocument::ConvertToPlaceholders(const QList<const QMetaObject*>& types)
{
    if (d_ptr->undo.IsBusy())
        return ZAXHostResult::Failed(Tr("A change of the document is still under way."));
    const auto& index = ZAXGeoContainerPrivate::Get(*d_ptr->container);
    const auto geometries = index.geometries.values() + index.aside.values();
    const auto held = std::ranges::find_if(geometries, [](const ZAXGeoGeometry* geometry) {
        return ZAXGeoGeometryPrivate::Get(*geometry).references > 0;
    });
    if (held != geometries.end())
        return ZAXHostResult::Failed(Tr("%1 is still in use.").arg(LabelOf(*held)));
    // Those derived from the types go with them, and what is no placeholder yet must not come to life now.
    QSet<QByteArray> retired;
    const auto registered = ZAXGeoContainer::GetRegisteredTypes() + types;
    for (const QMetaObject* type : registered) {
        if (std::ranges::any_of(types, [type](const QMetaObject* base) { return type->inherits(base); }))
            retired.insert(type->className());
    }
    const bool wasModified = IsModified();
    ZAXHostDocumentImage image;
    try {
        image = d_ptr->MakeImage();
    } catch (const std::exception& exception) {
        return ZAXHostResult::Failed(QString::fromUtf8(exception.what()));
    }
    const quint64 highestSavedId = d_ptr->highestSavedId;
    auto replacement = std::make_unique<ZAXFeatContainer>();
    // The other features are as they were; nobody chooses their values anew. Nor are ids given again.
    auto& features = ZAXFeatContainerPrivate::Get(*replacement);
    features.isRestoring = true;
    ZAXGeoContainerPrivate::Get(*replacement).lastId = ZAXGeoContainerPrivate::Get(*d_ptr->container).lastId;
    auto problems = ZAXHostDocumentImager::Populate(*replacement, image, retired);
    features.isRestoring = false;
    std::ranges::copy_if(d_ptr->problems, std::back_inserter(problems),
                         [](const ZAXHostProblem& problem) { return problem.kind == ZAXHostProblem::Damaged; });
    d_ptr->problems = problems;
    d_ptr->Replace(image, std::move(replacement));
    d_ptr->highestSavedId = highestSavedId;
    d_ptr->isTouched = wasModified;
    return ZAXHostResult::Done();
}
