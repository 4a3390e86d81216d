// A catalogue's file: it is loaded as QJsonDocument says, and written as QJsonDocument writes it, byte for byte.
// Loading what was written gives the same records, and writing those the same file.

#include "CatalogueModel.h"
#include "FuzzInput.h"
#include "ZAXMatJsonFileProvider.h"

#include <QFile>

namespace {

QString FilePath()
{
    return FuzzFolder() + QLatin1String("/materials.json");
}

void Write(const QByteArray& text)
{
    QFile file(FilePath());
    Require(file.open(QIODevice::WriteOnly) && file.write(text) == text.size(), "the folder takes the file");
}

QByteArray Read()
{
    QFile file(FilePath());
    Require(file.open(QIODevice::ReadOnly), "the file is there");
    return file.readAll();
}

void RequireSame(const ZAXMatJsonFileProvider& provider, const CatalogueModel& model)
{
    QByteArrayList keys = provider.GetMaterialKeys();
    std::ranges::sort(keys);
    Require(keys == model.materials.keys(), "the materials are those of the file");
    for (const ZAXMatDefinition& material : model.materials)
        Require(Describe(provider.GetMaterial(material.GetKey())) == Describe(material),
                "a material is as in the file");
    for (const ZAXMatDefinition& packaging : model.packagings)
        Require(Describe(provider.GetPackaging(packaging.GetKey())) == Describe(packaging),
                "a stock form is as in the file");
    for (auto linked = model.links.begin(); linked != model.links.end(); ++linked)
        Require(provider.GetPackagingKeys(linked.key()) == linked.value(), "stock forms belong to their material");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray text = FuzzInput(data, size).Rest();
    Write(text);
    ZAXMatJsonFileProvider provider(FuzzFolder());
    const CatalogueModel model = CatalogueModel::FromText(text);
    RequireSame(provider, model);

    provider.Commit();
    const QByteArray written = Read();
    Require(written == model.ToText(), "the file is written as Qt writes it");
    RequireSame(provider, CatalogueModel::FromText(written));
    provider.Commit();
    Require(Read() == CatalogueModel::FromText(written).ToText(), "what was written is read as Qt reads it");
    return 0;
}
