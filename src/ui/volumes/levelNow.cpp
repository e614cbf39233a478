#include "ui/volumes/levelNow.h"

#include "engine/settings/UtilityFunctionOfData.h"
#include "engine/volumes/SpaceLevel.h"

namespace orrinvale {

std::string levelNow() {
    return errorValueOf(UtilityFunctionOfData::getMyData().readerTxtForSettingValue()->errorValue);
}

}  // namespace orrinvale
