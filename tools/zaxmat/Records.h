#ifndef ZAXMAT_RECORDS_H
#define ZAXMAT_RECORDS_H

#include "Output.h"

#include "ZAXMatDefinition.h"

#include <QList>
#include <QString>

#include <optional>

namespace zaxmat {

class Catalogue;
class CatalogueRecord;

/// Sorts by name, letter case only deciding between equal names, then by thickness, those without one first, then by
/// key. The locale plays no part.
void SortRecords(QList<ZAXMatDefinition>& records);
void SortRecords(QList<CatalogueRecord>& records);

/// The thickness of a material in millimetres, as its feature would take it; empty for a missing one and for one that
/// is no length.
std::optional<double> ThicknessOf(const ZAXMatDefinition& material);
std::optional<double> ThicknessOf(const CatalogueRecord& material);

/// Whether two materials of these thicknesses, in millimetres, count as one. The documents see it the same way.
bool IsSameThickness(double a, double b);

/// The materials that \a text stands for, in the order of the catalogue: the one with that key, else those of that
/// name, else those of that type. Letter case counts. Empty when there are none.
QList<ZAXMatDefinition> FindMaterials(const Catalogue& catalogue, const QString& text);

/// Those of \a stockForms that \a text stands for: the one with that key, else those of that name.
QList<ZAXMatDefinition> FindStockForms(const QList<ZAXMatDefinition>& stockForms, const QString& text);

/// The stock forms of the whole catalogue that \a text stands for: the one with that key, else those of that name, in
/// the order of their materials.
QList<ZAXMatDefinition> FindStockForms(const Catalogue& catalogue, const QString& text);

/// The name of a material with its thickness, where it has one.
QString MaterialTitle(const ZAXMatDefinition& material, LengthUnit unit);

/// The materials for a message, one per line, with what tells them apart.
QString MaterialLines(const QList<ZAXMatDefinition>& materials, LengthUnit unit);
/// The stock forms for a message, one per line, with what tells them apart.
QString StockFormLines(const QList<ZAXMatDefinition>& stockForms);

/// Says that the catalogue has no material, or nothing at all, called \a text, what comes close to it, and where to
/// look.
QString UnknownMaterialText(const Catalogue& catalogue, const QString& text, LengthUnit unit);

} // namespace zaxmat

#endif
