#include "chunks.h"
