#pragma once

#include "stores/ClosestNames.h" // IWYU pragma: export
