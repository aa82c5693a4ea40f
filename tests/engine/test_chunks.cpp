#include <gtest/gtest.h>

#include "chunks.h"
