#include "commands.h"
