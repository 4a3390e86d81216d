#ifndef ZAX_TESTS_JOBDOCUMENT_H
#define ZAX_TESTS_JOBDOCUMENT_H

#include "Workshop.h"

#include "ZAXMatMaterialExtension.h"

/// An extension that the test has and zaxmat does not: for zaxmat, its module is missing.
class ForeignExtension : public ZAXMatMaterialExtension
{
    Q_OBJECT
    Q_CLASSINFO("version", "3")

public:
    Q_INVOKABLE ForeignExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ForeignExtension(ZAXFeatObject* parent);

    QString GetExtensionLabel() const override;
};

/// A document with a job's materials, "job ø 1.zaxdoc" in a workshop:
///
///     @1 Materials Root
///     @2   Steel - 2 mm (S235JR, key steel-2)
///     @3     Sheet large (key steel-2-large), active
///     @4     Sheet small
///     @5     ForeignExtension
///     @6   Steel - 3 mm (S235JR)
class JobDocument
{
public:
    explicit JobDocument(const Workshop& workshop);

    QString GetPath() const { return m_path; }
    QByteArray GetBytes() const { return Workshop::Read(m_path); }
    /// Makes a bit of the record of \a stockForm wrong.
    void Damage(const QString& stockForm) const;

private:
    QString m_path;
};

#endif
