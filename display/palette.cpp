#include "palette.h"
