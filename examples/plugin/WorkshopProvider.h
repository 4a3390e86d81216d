#ifndef WORKSHOPPROVIDER_H
#define WORKSHOPPROVIDER_H

#include <ZAXMatProvider.h>

/// The read-only catalogue of what the workshop keeps in stock, with the extensions of this module. The records are
/// part of the program; those of a real workshop would come from its stock database.
class WorkshopProvider : public ZAXMatProvider
{
public:
    /// \throws ZAXSysException "A provider with the given ID already exists." while there is another one.
    WorkshopProvider();

    /// "WorkshopProvider".
    static QByteArray Id();

    QString GetProviderLabel() const override;
    QByteArray GetProviderId() const override;

    QList<QByteArray> GetSupportedMaterialExtensions() const override;
    QList<QByteArray> GetSupportedMaterialProperties(const QByteArray& extension) const override;
    QList<QByteArray> GetMaterialKeys() const override;
    ZAXMatDefinition GetMaterial(const QByteArray& key) const override;

    bool HasPackaging() const override;
    QList<QByteArray> GetSupportedPackagingExtensions() const override;
    QList<QByteArray> GetSupportedPackagingProperties(const QByteArray& extension) const override;
    QList<QByteArray> GetPackagingKeys(const QByteArray& materialKey) const override;
    ZAXMatDefinition GetPackaging(const QByteArray& key) const override;
};

#endif
