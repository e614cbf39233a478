#include "engine/base/UtilityObject.h"

namespace orrinvale {

UtilityObject& UtilityObject::getMyObject() {
    static UtilityObject* const instance =
        new UtilityObject;  // threads may still look at it while the process ends
    return *instance;
}

}  // namespace orrinvale
