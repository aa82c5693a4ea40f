#include <gtest/gtest.h>

#include "run_cli.h"
