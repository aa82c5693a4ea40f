#include "grf.h"
