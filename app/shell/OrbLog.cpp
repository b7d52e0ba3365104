#include "OrbLog.h"
