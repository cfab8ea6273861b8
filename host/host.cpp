// SPDX-License-Identifier: MIT
#include <host/VelImprinterPlugin.h>
