// How the command apps prints what it found.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "engine/uninstall/AppItems.h"
#include "engine/uninstall/Leftovers.h"

namespace orrinvale::cli {

class Output;

/// Kinds that could not be read, by their type, with the reason.
using UnreadKinds = std::map<ApplicationType, std::string>;

void printAppsJson(Output& out, const AppItemsArray& apps, const UnreadKinds& unread,
                   bool isStopped);
void printAppsListing(Output& out, const AppItemsArray& apps, bool colour);
void printLeftoversJson(Output& out, const std::vector<Leftover>& leftovers,
                        const UnreadKinds& unread, bool isStopped);
/// For people: each with its reason, and with the documents and databases in it.
void printLeftoversListing(Output& out, const std::vector<Leftover>& leftovers, bool colour);

}  // namespace orrinvale::cli
