#include "decode.h"
