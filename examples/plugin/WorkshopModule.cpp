#include "WorkshopPlugin.h"
#include "WorkshopProviderManager.h"

#include <ZAXGeoContainer.h>

#include <QMetaType>

// What the module hands to the application, from the moment it is loaded until it is closed: made from top to bottom,
// taken back from bottom to top. It all stands in this one source, since across sources the linker would decide.

namespace {

/// Types of our own that Qt got to know by name, here an enumeration that is a property. Qt would go on to look at them
/// when the module is no longer there.
const struct MetaTypes
{
    ~MetaTypes() { QMetaType::unregisterMetaType(QMetaType::fromType<WorkshopSheetExtension::GrainDirection>()); }
} metaTypes;

/// Classes that documents create by name.
template <typename Feature>
struct FeatureClass
{
    FeatureClass() { ZAXGeoContainer::RegisterType(&Feature::staticMetaObject); }
    ~FeatureClass() { ZAXGeoContainer::UnregisterType(&Feature::staticMetaObject); }
};

const FeatureClass<WorkshopGasExtension> gasExtension;
const FeatureClass<WorkshopSheetExtension> sheetExtension;

WorkshopPlugin plugin;
WorkshopProviderManager providerManager;

} // namespace
