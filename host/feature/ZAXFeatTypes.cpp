#include "ZAXFeatContainer.h"
#include "ZAXFeatFolder.h"

// What the host registers of its own. The meta-types of its pointers must be the host's copies, not ones in a module
// that may leave.

namespace {

[[maybe_unused]] const bool registered = [] {
    qRegisterMetaType<ZAXFeatObject*>();
    qRegisterMetaType<ZAXFeatContainer*>();
    qRegisterMetaType<ZAXGeoContainer*>();
    ZAXGeoContainer::RegisterType(&ZAXFeatFolder::staticMetaObject);
    return true;
}();

} // namespace
