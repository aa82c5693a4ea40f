#include "renderer.h"
