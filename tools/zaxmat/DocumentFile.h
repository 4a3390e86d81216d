#ifndef ZAXMAT_DOCUMENTFILE_H
#define ZAXMAT_DOCUMENTFILE_H

#include "ZAXFeatLastSavedStore.h"
#include "ZAXHostDocument.h"

#include <QString>

#include <memory>

class ZAXFeatObject;
class ZAXMatRoot;

namespace zaxmat {

class FileLock;
class Output;

/// While it lives, new features start with the defaults of their classes. Otherwise they would start with what the
/// features made or loaded before them hold, and the same command would not always give the same document.
class ClassDefaults : public ZAXFeatLastSavedStore
{
public:
    ClassDefaults() { SetCurrent(this); }
    ~ClassDefaults() override { SetCurrent(nullptr); }

    QVariant GetValue(const QByteArray&, const QByteArray&) const override { return {}; }
    void SetValue(const QByteArray&, const QByteArray&, const QVariant&) override {}
};

/// \throws Failure (FileFailure) with what went wrong in the host, if anything did.
void Require(const ZAXHostResult& result);

/// Opens the file \a path in \a document, which stays new and empty when there is no such file; false then. The
/// progress line of \a output tells of that.
/// \throws Failure (FileFailure) for what cannot be read or is no document, nor for \a damage what is left of one.
bool OpenDocument(ZAXHostDocument& document, const QString& path, ZAXHostDocument::Damage damage, const Output& output);
/// The same for a document that is to be changed. While other processes have it open for that, waits: up to five
/// seconds for each. The document is read-only if that was not enough.
bool OpenDocumentForChange(ZAXHostDocument& document, const QString& path, ZAXHostDocument::Damage damage,
                           const Output& output);

/// While it lives, no other command makes the document \a path, where that does not exist: the second would put its own
/// in the place of the first one's. Null for a document that exists, and where nothing can be made. The progress line
/// of \a output tells of waiting for others.
std::unique_ptr<FileLock> LockCreation(const QString& path, const Output& output);

/// The materials root of \a document, made if there is none.
ZAXMatRoot* MaterialsRootOf(ZAXHostDocument& document);

/// A new feature of the class \a className under \a parent, at the top of \a document for a null one. Never null.
/// \throws Failure (InternalError) when the host refuses to make it.
ZAXFeatObject* CreateFeature(ZAXHostDocument& document, const char* className, ZAXFeatObject* parent);

/// Saves \a document to the file \a path, and opens that in \a reopened to see that it is the same document. When this
/// returns, the file holds the document.
/// \throws Failure (FileFailure) when that is not so. Then the file is as it was before, unless the message says
/// otherwise.
void SaveDocument(ZAXHostDocument& document, const QString& path, ZAXHostDocument& reopened);

} // namespace zaxmat

#endif
