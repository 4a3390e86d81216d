#ifndef ZAXHOSTINILASTSAVEDSTORE_H
#define ZAXHOSTINILASTSAVEDSTORE_H

#include "ZAXFeatLastSavedStore.h"
#include "ZAXHostExport.h"

#include <memory>

class QSettings;
class QString;

/// Last-saved values in an INI file, one section per class. Values of enumerations are kept by name, those of types
/// that are not Qt's as text; what has no text is not kept, which is logged. Puts itself in use nowhere: see
/// ZAXFeatLastSavedStore::SetCurrent().
class ZAXHOST_EXPORT ZAXHostIniLastSavedStore : public ZAXFeatLastSavedStore
{
public:
    /// Keeps the values in the file \a path, which is made at the first value.
    explicit ZAXHostIniLastSavedStore(const QString& path);
    /// Writes what is not written yet.
    ~ZAXHostIniLastSavedStore() override;

    QVariant GetValue(const QByteArray& className, const QByteArray& property) const override;
    void SetValue(const QByteArray& className, const QByteArray& property, const QVariant& value) override;

private:
    std::unique_ptr<QSettings> m_settings;
};

#endif
