#include "CatalogueText.h"

#include "ZAXMatDefinition.h"
#include "ZAXMatProviderBase.h"

#include <QRegularExpression>
#include <QTest>

QByteArray Json(QByteArray text)
{
    return text.replace('\'', '"');
}

QByteArray MaterialText(const QByteArray& key, const QByteArray& properties)
{
    return "'" + key + "':{'key':'" + key + "','materialKey':'','name':'Material " + key +
           "','type':0,'properties':" + properties + '}';
}

QByteArray PackagingText(const QByteArray& key, const QByteArray& materialKey)
{
    return "'" + key + "':{'key':'" + key + "','materialKey':'" + materialKey + "','name':'Packaging " + key +
           "','type':1,'properties':{}}";
}

QByteArray CatalogueOf(const QByteArrayList& members)
{
    return Json('{' + members.join(',') + '}');
}

QStringList ContentOf(const ZAXMatProviderBase& provider)
{
    QStringList lines;
    const QByteArrayList keys = provider.GetMaterialKeys();
    for (const QByteArray& key : keys) {
        QStringList packagings;
        const QByteArrayList packagingKeys = provider.GetPackagingKeys(key);
        for (const QByteArray& packagingKey : packagingKeys)
            packagings.append(provider.GetPackaging(packagingKey).GetName());
        packagings.sort();
        const ZAXMatDefinition material = provider.GetMaterial(key);
        lines.append(material.GetName() + u' ' + material.GetValue("thickness").toString() + QLatin1String(": ") +
                     packagings.join(u' '));
    }
    lines.sort();
    return lines;
}

QString SystemError(int number)
{
    return QRegularExpression::escape(qt_error_string(number));
}

void ExpectWarning(const QString& pattern)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(pattern));
}
