#ifndef ZAXMAT_MATERIALCHOICE_H
#define ZAXMAT_MATERIALCHOICE_H

#include "Output.h"

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace zaxmat {

class Catalogue;

/// What the user says about a material to be taken from a catalogue.
struct MaterialRequest
{
    /// A material, as FindMaterials() reads it.
    QString material;
    /// A length, as ZAXSysValue::FromString() reads it; empty when the material alone decides.
    QString thickness;
    /// Stock forms of the material, as FindStockForms() reads them; those that the catalogue marks active if empty.
    QStringList stockForms;
};

/// What is to be taken from a catalogue.
struct MaterialChoice
{
    QByteArray providerId;
    ZAXMatDefinition material;
    /// The thickness that the material is to have, in millimetres: its own or, if it has none, the one requested.
    double thickness = 0.0;
    QList<ZAXMatDefinition> stockForms;
    /// Whether the catalogue has stock forms of the material at all.
    bool hasStockForms = false;
};

/// The one material, with the stock forms, that \a request names.
/// \throws Failure (WrongUsage) when something requested is not in the catalogue, is there several times or is no
/// thickness, with what there is instead; (InvalidValues) when the catalogue holds something for a thickness that is
/// none.
MaterialChoice ChooseMaterial(const Catalogue& catalogue, const MaterialRequest& request, LengthUnit unit);

} // namespace zaxmat

#endif
