#include "platform/continuous_corners.h"
