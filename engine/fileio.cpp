#include "fileio.h"
