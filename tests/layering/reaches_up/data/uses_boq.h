// A framework header that reaches up into the bill of quantities: the layer check must
// refuse it. Never compiled.
#pragma once

#include "boq/units/tb_einheit.h"
#include "storage/db_kernel.h"
