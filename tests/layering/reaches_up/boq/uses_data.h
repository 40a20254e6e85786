// Reaching down is allowed. Never compiled.
#pragma once

#include "data/tables/std_tb.h"
