// OneShotRight: see OneShotRight.h. FolderUtilities shows both operations to the pages.
#include "engine/cleaning/OneShotRight.h"

#include <fmt/format.h>

#include "engine/base/Log.h"
#include "engine/cleaning/QnAuthorization.h"

namespace orrinvale {
namespace {

bool worked(std::string_view failure, std::int32_t status) {
    if (status == AuthorizationStatus::success) return true;
    Log::line(fmt::format("{}: {}", failure, status));
    return false;
}

}  // namespace

bool createOneShotRight(AuthorizationRef reference) {
    Authorization& system = QnAuthorization::shareQnAuthorization().platform();
    return worked("Error Creating Initial Authorization", system.create(reference)) &&
           worked("Copy Rights Unsuccessful",
                  system.copyRights(reference, Authorization::adminRight, AuthorizationFlags::acquire));
}

bool deleteOneShotRight(AuthorizationRef reference) {
    return worked("Free Rights Unsuccessful", QnAuthorization::shareQnAuthorization().platform().free(reference));
}

}  // namespace orrinvale
