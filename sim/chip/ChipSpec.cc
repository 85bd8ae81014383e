#include "sim/chip/ChipSpec.h"
