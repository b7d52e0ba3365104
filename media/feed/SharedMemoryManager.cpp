#include "SharedMemoryManager.h"
