#pragma once

#include "stores/ClosestNames.h"
