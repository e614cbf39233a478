// Moved: include engine/base/IconRequest.h.
#pragma once

#include "engine/base/IconRequest.h"
